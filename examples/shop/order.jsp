<%@ page contentType="text/html; charset=ISO-8859-1" %>
<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 4.0 Transitional//EN">
<HTML>
<HEAD><TITLE>Your order</TITLE></HEAD>
<BODY>
<%-- A servlet puts the order into the request before it forwards to this page. --%>
<% garden.Order order = (garden.Order) request.getAttribute("order"); %>
<P>Ordered by <!--METADATA type="DynamicData" startspan
<ZELX:PROPERTY PROPERTY="order.customer">
--><%= order.getCustomer() %><!--METADATA type="DynamicData" endspan-->.</P>
<!--METADATA type="DynamicData" startspan
<TABLE DYNAMICELEMENT OUTERLOOPPROPERTY="order.line()" FONTTEXT="Nothing is ordered yet." BORDER="1">
<THEAD><TR><TH>Article<TH>Colours<TH>Cents</THEAD>
<TBODY><TR><TD><ZELX:PROPERTY PROPERTY="order.line().name"></TD><TD><ZELX:TEXT LOOPPROPERTY="order.line().colours[]" DELIMITER=", "><ZELX:PROPERTY PROPERTY="order.line().colours[]"></ZELX:TEXT></TD><TD ALIGN="right"><ZELX:PROPERTY PROPERTY="order.line().price"></TD></TR></TBODY>
</TABLE>
--><%
try {
  garden.Article _p0 = order.getLine(0); // throws an exception if empty. %>
  <TABLE border="1">
    <THEAD>
      <TR>
        <TH>Article</TH>
        <TH>Colours</TH>
        <TH>Cents</TH>
      </TR>
    </THEAD>
    <TBODY><%
      for (int _i0 = 0; ; ) { %>
        <TR>
          <TD><%= _p0.getName() %></TD>
          <TD><%
            try {
              String[] _a1 = _p0.getColours();
              String _p1 = _a1[0]; // throws an exception if empty.
              for (int _i1 = 0; ; ) { %><%= _p1 %><%
                _i1++;
                try {
                  _p1 = _a1[_i1];
                  %>, <%
                }
                catch (java.lang.ArrayIndexOutOfBoundsException _e1) {
                  break;
                }
              }
            }
            catch (java.lang.ArrayIndexOutOfBoundsException _e1) {
            } %></TD>
          <TD align="right"><%= _p0.priceInCents() %></TD>
        </TR><%
        _i0++;
        try {
          _p0 = order.getLine(_i0);
        }
        catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
          break;
        }
      } %>
    </TBODY>
  </TABLE><%
}
catch (java.lang.ArrayIndexOutOfBoundsException _e0) {
  %><FONT>Nothing is ordered yet.</FONT><%
} %><!--METADATA type="DynamicData" endspan-->
<!--METADATA type="DynamicData" startspan
<FORM DYNAMICELEMENT ACTION="pay.jsp" ACTIONPROPERTY="customer=$(order.customer)" METHOD="post">
<P><INPUT DYNAMICELEMENT TYPE="radio" NAME="way" VALUE="post" DEFAULTPROPERTY="order.way"> by post
<INPUT DYNAMICELEMENT TYPE="radio" NAME="way" VALUE="fetch" DEFAULTPROPERTY="order.way"> I fetch it
<INPUT TYPE="submit" VALUE="Pay"></P>
</FORM>
--><FORM action="pay.jsp?customer=<%= java.net.URLEncoder.encode(order.getCustomer()) %>" method="post">

<P><%
  if (order.getWay().equals("post")) { %>
    <INPUT checked name="way" type="radio" value="post"><%
  }
  else { %>
    <INPUT name="way" type="radio" value="post"><%
  }
  %> by post
<%
  if (order.getWay().equals("fetch")) { %>
    <INPUT checked name="way" type="radio" value="fetch"><%
  }
  else { %>
    <INPUT name="way" type="radio" value="fetch"><%
  }
  %> I fetch it
<INPUT type="submit" value="Pay"></P>
</FORM><!--METADATA type="DynamicData" endspan-->
</BODY>
</HTML>

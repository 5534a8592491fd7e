<%@ page language="java" import="java.util.*" %>
<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 4.0 Transitional//EN">
<HTML>
<HEAD>
<TITLE>Garden shop</TITLE>
</HEAD>
<%-- The order comes from the session; a new visitor gets an empty one. --%>
<jsp:useBean id="order" scope="session" class="shop.Order" />
<BODY bgcolor="#FFFFFF">
<H1>Your order, <%= order.getCustomer() %></H1>
<TABLE border=1>
<TR><TH>Article<TH>Price
<% for (Iterator i = order.items(); i.hasNext(); ) {
     Item item = (Item) i.next(); %>
<TR><TD><A href="item.jsp?no=<%= item.getNumber() %>"><%= item.getName() %></A>
    <TD align="right"><%= item.getPrice() %>&nbsp;&euro;
<% } %>
</TABLE>
<FORM action="pay.jsp" method="post">
<INPUT type="submit" value="Pay">
</FORM>
</BODY>
</HTML>

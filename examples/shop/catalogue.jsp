<%@ page contentType="text/html; charset=ISO-8859-1" %>
<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 4.0 Transitional//EN">
<HTML>
<HEAD><TITLE>Garden shop</TITLE></HEAD>
<BODY>
<jsp:useBean id="shop" class="garden.Shop" scope="application" />
<H1><ZELX:PROPERTY PROPERTY="shop.title" AUTHORTIMETEXT="Our shop"></H1>
<P>Today: <ZELX:TEXT LOOPPROPERTY="shop.articles[]" DELIMITER=", " LASTDELIMITER=" and "><ZELX:PROPERTY PROPERTY="shop.articles[].name"></ZELX:TEXT>.</P>
<UL DYNAMICELEMENT LOOPPROPERTY="shop.articles[]" FONTTEXT="All is sold." FONTCOLOR="red">
<LI><A DYNAMICELEMENT HREF="order.jsp" HREFPROPERTY="article=$(shop.articles[].name)"><ZELX:PROPERTY PROPERTY="shop.articles[].name"></A>
</UL>
<FORM ACTION="order.jsp" METHOD="get">
<P><SELECT DYNAMICELEMENT NAME="number" LOOPPROPERTY="shop.articles[]" ITEMPROPERTY="shop.articles[].name" VALUEPROPERTY="shop.articles[].number" DEFAULTPROPERTY="shop.favourite"></SELECT>
<INPUT DYNAMICELEMENT TYPE="text" NAME="count" SIZE="3" VALUEPROPERTY="shop.usualCount">
<INPUT TYPE="submit" VALUE="Order"></P>
</FORM>
</BODY>
</HTML>

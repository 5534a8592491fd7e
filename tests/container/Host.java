// Serves a folder of JSP pages from a servlet container of its own, asks for each page with beans of several sizes, and
// compares what a browser would get with the expected text that stands beside the authored page.

import jakarta.servlet.Filter;
import java.io.IOException;
import java.io.InputStream;
import java.net.HttpURLConnection;
import java.net.URI;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.TreeMap;
import java.util.logging.LogManager;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import org.apache.catalina.Context;
import org.apache.catalina.Wrapper;
import org.apache.catalina.connector.Connector;
import org.apache.catalina.startup.Tomcat;
import org.apache.jasper.servlet.JasperInitializer;
import org.apache.tomcat.util.descriptor.web.FilterDef;
import org.apache.tomcat.util.descriptor.web.FilterMap;
import shop.Cart;

public final class Host {
  private static final int MOST_ITEMS = 3;
  private static final int REPLY_MILLIS = 20_000;
  private static final int ALL_MILLIS = 300_000;
  private static final int LONGEST_REPLY = 1 << 20;

  private static final Pattern COMMENT = Pattern.compile("<!--.*?-->", Pattern.DOTALL);
  private static final Pattern BODY =
      Pattern.compile("<BODY[^>]*>(.*)</BODY>", Pattern.DOTALL | Pattern.CASE_INSENSITIVE);
  private static final Pattern TAG = Pattern.compile("<(/?[A-Za-z][\\w:-]*)((?:[^>\"']|\"[^\"]*\"|'[^']*')*)>");
  private static final Pattern ATTRIBUTE =
      Pattern.compile("([^\\s=\"'/]+)(?:\\s*=\\s*(?:\"([^\"]*)\"|'([^']*)'|([^\\s\"']+)))?");

  private int passed;
  private int failed;

  /** Arguments: the folder of the JSP pages, the folder of the expected texts, an empty folder to work in. */
  public static void main(String[] args) throws Exception {
    // A generated loop that never ends must not hold the build machine.
    Thread watch = new Thread(() -> {
      try {
        Thread.sleep(ALL_MILLIS);
        System.out.println("out of time");
        Runtime.getRuntime().halt(2);
      } catch (InterruptedException e) {
        Thread.currentThread().interrupt();
      }
    });
    watch.setDaemon(true);
    watch.start();

    Path pages = Path.of(args[0]).toAbsolutePath();
    LogManager.getLogManager().reset();  // what a page fails for stands in its reply
    Tomcat tomcat = start(pages, args[2]);
    Host host = new Host();
    try {
      host.checkAll(pages, Path.of(args[1]), tomcat.getConnector().getLocalPort());
    } finally {
      tomcat.stop();
      tomcat.destroy();
    }
    System.out.printf("%d passed, %d failed%n", host.passed, host.failed);
    System.exit(host.failed == 0 && host.passed > 0 ? 0 : 1);
  }

  private static Tomcat start(Path pages, String work) throws Exception {
    Tomcat tomcat = new Tomcat();
    tomcat.setBaseDir(work);
    tomcat.setSilent(true);
    Connector connector = new Connector();
    connector.setProperty("address", "127.0.0.1");
    connector.setPort(0);
    tomcat.setConnector(connector);

    Context context = tomcat.addContext("", pages.toString());
    context.addServletContainerInitializer(new JasperInitializer(), null);
    Wrapper jsp = Tomcat.addServlet(context, "jsp", "org.apache.jasper.servlet.JspServlet");
    jsp.addInitParameter("development", "false");
    jsp.addMapping("*.jsp");

    // Stands for the application's servlet: puts the bean into the request before the page runs.
    Filter beans = (request, response, chain) -> {
      request.setAttribute("cart", new Cart(Integer.parseInt(request.getParameter("n"))));
      chain.doFilter(request, response);
    };
    FilterDef definition = new FilterDef();
    definition.setFilterName("beans");
    definition.setFilter(beans);
    context.addFilterDef(definition);
    FilterMap everyPage = new FilterMap();
    everyPage.setFilterName("beans");
    everyPage.addURLPattern("/*");
    context.addFilterMap(everyPage);
    tomcat.start();
    return tomcat;
  }

  private void checkAll(Path pages, Path expectations, int port) throws IOException {
    List<String> names;
    try (Stream<Path> files = Stream.concat(Files.list(pages), Files.list(expectations))) {
      names = files.map(f -> f.getFileName().toString()).filter(f -> f.endsWith(".jsp") || f.endsWith(".txt"))
          .map(f -> f.substring(0, f.length() - 4)).distinct().sorted().collect(Collectors.toList());
    }
    for (String name : names) {
      Path page = pages.resolve(name + ".jsp");
      Path expected = expectations.resolve(name + ".txt");
      if (!Files.exists(page) || !Files.exists(expected)) {
        fail(name, "page or expected text missing");
        continue;
      }
      List<String> lines = Files.readAllLines(expected);
      for (int n = 0; n <= MOST_ITEMS; n++) {
        check(name + " with " + n, fetch("http://127.0.0.1:" + port + "/" + name + ".jsp?n=" + n), expected(lines, n));
      }
    }
  }

  private void check(String request, String reply, String expected) {
    Matcher body = BODY.matcher(COMMENT.matcher(reply).replaceAll(""));
    if (!body.find()) {
      fail(request, "no page:\n" + reply.substring(0, Math.min(reply.length(), 800)));
      return;
    }
    String got = normalize(body.group(1));
    String wanted = normalize(expected);
    if (got.equals(wanted)) {
      passed++;
      return;
    }
    int at = 0;
    while (at < got.length() && at < wanted.length() && got.charAt(at) == wanted.charAt(at)) at++;
    fail(request, "\n  expected ..." + around(wanted, at) + "\n  got      ..." + around(got, at));
  }

  private void fail(String request, String why) {
    failed++;
    System.out.println(request + ": " + why);
  }

  private static String around(String text, int at) {
    return text.substring(Math.max(0, at - 40), Math.min(text.length(), at + 80));
  }

  /** A line stands for the sizes that its first word lists, "*" for all; lines that begin with "#" are remarks. */
  private static String expected(List<String> lines, int n) {
    StringBuilder text = new StringBuilder();
    for (String line : lines) {
      int blank = line.indexOf(' ');
      if (blank < 0 || line.startsWith("#")) continue;
      String sizes = line.substring(0, blank);
      if (sizes.equals("*") || sizes.contains(Integer.toString(n))) text.append(line.substring(blank + 1)).append('\n');
    }
    return text.toString();
  }

  /**
   * What no browser tells apart becomes equal: tag names in upper case; attributes by name, in lower case, quoted.
   * White space that holds a line end is dropped where it touches a tag; any other stretch of it is one blank.
   */
  private static String normalize(String text) {
    String tags = TAG.matcher(text).replaceAll(tag -> Matcher.quoteReplacement(oneTag(tag.group(1), tag.group(2))));
    return tags.replaceAll("(?<=>|^)\\s*\n\\s*|\\s*\n\\s*(?=<|$)", "").replaceAll("\\s+", " ");
  }

  private static String oneTag(String name, String rest) {
    TreeMap<String, String> attributes = new TreeMap<>();
    Matcher one = ATTRIBUTE.matcher(rest);
    while (one.find()) {
      String value = Stream.of(2, 3, 4).map(one::group).filter(g -> g != null).findFirst().orElse("");
      attributes.put(one.group(1).toLowerCase(java.util.Locale.ROOT), value);
    }
    StringBuilder tag = new StringBuilder("<").append(name.toUpperCase(java.util.Locale.ROOT));
    attributes.forEach((key, value) -> tag.append(' ').append(key).append("=\"").append(value).append('"'));
    return tag.append('>').toString();
  }

  private static String fetch(String address) {
    try {
      HttpURLConnection connection = (HttpURLConnection) URI.create(address).toURL().openConnection();
      connection.setConnectTimeout(REPLY_MILLIS);
      connection.setReadTimeout(REPLY_MILLIS);
      boolean served = connection.getResponseCode() < 400;
      try (InputStream in = served ? connection.getInputStream() : connection.getErrorStream()) {
        String reply = new String(in.readNBytes(LONGEST_REPLY), StandardCharsets.ISO_8859_1);
        return served ? reply : reply.substring(Math.max(0, reply.indexOf("<pre>")));
      } finally {
        connection.disconnect();
      }
    } catch (IOException e) {
      return e.toString();
    }
  }
}

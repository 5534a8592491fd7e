package garden;

/** One order, which a servlet puts into the request. */
public final class Order {
  private final Article[] lines;

  public Order(Article... lines) {
    this.lines = lines;
  }

  public String getCustomer() {
    return "A. Gardener & Sons";
  }

  /** Behind the last line this ends as an array does: that is how a page learns that there are no more. */
  public Article getLine(int index) {
    return lines[index];
  }

  public String getWay() {
    return "fetch";
  }
}

package shop;

public final class Item {
  private final String name;
  private final int price;

  public Item(String name, int price) {
    this.name = name;
    this.price = price;
  }

  public String getName() {
    return name;
  }

  /** A getter that no naming rule finds: only the host's lookup knows it. */
  public int cost() {
    return price;
  }
}

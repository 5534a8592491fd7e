package garden;

public final class Article {
  private final String name;
  private final String number;
  private final int cents;
  private final String[] colours;

  public Article(String name, String number, int cents, String... colours) {
    this.name = name;
    this.number = number;
    this.cents = cents;
    this.colours = colours;
  }

  public String getName() {
    return name;
  }

  public String getNumber() {
    return number;
  }

  public String[] getColours() {
    return colours.clone();
  }

  /** No naming rule leads from "price" to this: the types file does. */
  public int priceInCents() {
    return cents;
  }
}

package shop;

public final class Order {
  private static final String[] NAMES = {"tea", "pen"};
  private static final String[] MARKS = {"x", "y"};

  private final int number;

  public Order(int number) {
    this.number = number;
  }

  public Order getSelf() {
    return this;
  }

  public String getId() {
    return "no" + number;
  }

  public Item[] getLines() {
    Item[] lines = new Item[number];
    for (int i = 0; i < number; i++) lines[i] = new Item(NAMES[i], i + 5);
    return lines;
  }

  public Item getLine(int index) {
    return getLines()[index];
  }

  public String[] getMarks() {
    return java.util.Arrays.copyOf(MARKS, number);
  }
}

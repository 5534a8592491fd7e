package shop;

/** The bean of the pages: every array of it is as long as its request asked for. */
public final class Cart {
  private static final String[] NAMES = {"red ink", "pen", "cup"};
  private static final String[] NOTES = {"new", "sale", "last"};

  private final int size;

  public Cart(int size) {
    this.size = size;
  }

  public Item[] getItems() {
    Item[] items = new Item[size];
    for (int i = 0; i < size; i++) items[i] = new Item(NAMES[i], i + 1);
    return items;
  }

  /** Ends as an array would: that is how a generated loop learns the size. */
  public Item getItem(int index) {
    return getItems()[index];
  }

  public String[] getNotes() {
    return java.util.Arrays.copyOf(NOTES, size);
  }

  public String getNote(int index) {
    return getNotes()[index];
  }

  /** One fewer than the items. */
  public String[] getHints() {
    return java.util.Arrays.copyOf(NOTES, Math.max(0, size - 1));
  }

  public int[] getNumbers() {
    int[] numbers = new int[size];
    for (int i = 0; i < size; i++) numbers[i] = 10 * (i + 1);
    return numbers;
  }

  /** The first order has no lines, the second one, the third two. */
  public Order[] getOrders() {
    Order[] orders = new Order[size];
    for (int i = 0; i < size; i++) orders[i] = new Order(i);
    return orders;
  }

  public Order getOrder(int index) {
    return getOrders()[index];
  }

  public Cart getSelf() {
    return this;
  }

  public String getTitle() {
    return "Tea & more";
  }

  public StringBuffer getLabel() {
    return new StringBuffer("a=b c");
  }

  public int getCount() {
    return size;
  }

  public String getPicture() {
    return "cart.gif";
  }

  public String getField() {
    return "f1";
  }

  /** Equals the name of the second item. */
  public String getChoice() {
    return "pen";
  }
}

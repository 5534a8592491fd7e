package garden;

/** What the catalogue shows. */
public final class Shop {
  public String getTitle() {
    return "Garden shop";
  }

  public Article[] getArticles() {
    return new Article[] {
      new Article("rose", "r1", 450, "red", "white"), new Article("tulip", "t1", 120, "yellow"), new Article("ivy", "i1", 300)
    };
  }

  /** The number of the article that is chosen at first. */
  public String getFavourite() {
    return "t1";
  }

  public int getUsualCount() {
    return 1;
  }
}

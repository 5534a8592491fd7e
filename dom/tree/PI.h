// A processing instruction; also the form in which a page's DOCTYPE stands in the tree.
#pragma once

#include <string>

#include "dom/export.h"
#include "dom/tree/Node.h"

namespace zeldom40 {

// A target (the node's name) and its data. Of a DOCTYPE the data is the whole declaration as read.
class ZELDOM40_API PI : public Node {
 public:
  PI(const std::string& target, const std::string& data);
  PI(const char* target, const char* data);
  PI(const PI& other);
  ~PI() override;

  // Lives until setData.
  const std::string& getData() const { return data_; }
  // Both are recorded for undo when the node is in its document's tree.
  void setName(const char* name) override;
  void setName(const std::string& name) override;
  void setData(const char* data);
  void setData(const std::string& data);

 private:
  Node* cloneSelf() const override;

  std::string data_;
};

}  // namespace zeldom40

// Look-up of tag names by their bytes.
#include "dom/html/PageNames.h"

#include <chrono>
#include <string>

#include "dom/document/DOM.h"
#include "dom/document/NameLookup.h"
#include "dom/dtd/DTDFrame.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/source/CharHelpers.h"

namespace zeldom40 {

// A page must not be able to choose names that all collide, so each parse hashes in its own way.
PageNames::PageNames(ParserType::_dtd_frame* frame) : frame_(frame), slots_(256, nullptr) {
  const auto time = std::chrono::steady_clock::now().time_since_epoch().count();
  const std::uint64_t mixed =
      (reinterpret_cast<std::uintptr_t>(this) ^ static_cast<std::uint64_t>(time)) * UINT64_C(0x9E3779B97F4A7C15);
  seed_ = static_cast<std::uint32_t>(mixed >> 32);
}

namespace {

bool isJSPVersion1() { return DOM::getDOM() && DOM::getDOM()->getJSPVersion() == DOM::JSP_VERSION_1; }

}  // namespace

void PageNames::noteSources() {
  table_ = &contentTable(*frame_);
  readings_ = frame_->readings;
  jspVersion1_ = isJSPVersion1();
}

bool PageNames::holds() const {
  return table_ == &contentTable(*frame_) && readings_ == frame_->readings && jspVersion1_ == isJSPVersion1();
}

std::unique_ptr<PageNames> PageNames::takeFrom(ParserType::_dtd_frame* frame) {
  if (frame && frame->parserNotes) {
    std::unique_ptr<PageNames> kept(static_cast<PageNames*>(frame->parserNotes.release()));
    if (kept->holds()) return kept;
  }
  auto made = std::make_unique<PageNames>(frame);
  if (frame) made->noteSources();
  return made;
}

void PageNames::keep(std::unique_ptr<PageNames> names) {
  // Names that no DTD knows are the page's own; many of them are not worth keeping.
  constexpr std::size_t kMost = 512;
  constexpr std::size_t kMostBytes = 16 << 10;
  ParserType::_dtd_frame* frame = names->frame_;
  if (!frame || names->entries_.size() > kMost || names->bytes_ > kMostBytes || !names->holds()) return;
  for (PageName* entry : names->touched_) {
    entry->barredTo = -1;
    entry->kind = {};
    entry->touched = false;
  }
  names->touched_.clear();
  frame->parserNotes = std::move(names);
}

std::uint32_t PageNames::hashFolded(std::string_view text) const {
  std::uint32_t hash = seed_;
  for (char c : text) hash = (hash ^ static_cast<unsigned char>(upperByte(c))) * 16777619u;
  return hash ^ (hash >> 15);
}

PageName& PageNames::findAny(std::string_view asWritten) {
  const std::uint32_t hash = hashFolded(asWritten);
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = hash & mask; slots_[i]; i = (i + 1) & mask) {
    PageName& entry = *slots_[i];
    if (entry.hash != hash || !equalsFolded(asWritten, entry.name.view())) continue;
    if (entry.generation != generation_) lookUp(entry);
    return entry;
  }
  return add(asWritten, hash);
}

PageName& PageNames::add(std::string_view asWritten, std::uint32_t hash) {
  if (entries_.size() * 2 >= slots_.size()) grow();
  std::string upper(asWritten);
  upperCase(upper);
  PageName& entry = entries_.emplace_back();
  bytes_ += upper.size();
  entry.name = SharedName(upper);
  entry.hash = hash;
  lookUp(entry);
  const std::size_t mask = slots_.size() - 1;
  std::size_t i = hash & mask;
  while (slots_[i]) i = (i + 1) & mask;
  slots_[i] = &entry;
  return entry;
}

void PageNames::lookUp(PageName& entry) {
  entry.generation = generation_;
  entry.barredTo = -1;
  entry.kind = {};
  if (!frame_) return;
  ElementDefinition* definition = frame_->elements->find(entry.name.view());
  if (definition) entry.name = definition->upperName();
  entry.definition = definition && isVisibleDefinition(*definition) ? definition : nullptr;
  entry.tableId = frame_->names.find(entry.name.view());
  const ElementDefinition* visible = entry.definition;
  entry.group = visible ? visible->getGroup() : 0;
  entry.endOmittable = visible && visible->isEndOmittable();
  entry.emptyTag = visible && visible->isEmptyTag();
  entry.holdsCData = visible && visible->getContentType() == ElementDefinition::CONTENT_CDATA;
  entry.hasAttributes = visible && visible->getAttributes();
  entry.hasExceptions = visible && (visible->getExclusions() || visible->getInclusions());
  entry.row = nullptr;
  entry.ordinal = visible ? visible->ordinal() : -1;
  const int id = visible ? visible->getElementID() : ID_UNKNOWN;
  entry.mayHaveMetaData = id == ID_OBJECT || id == ID_ZELX_ATV || (id >= ID_ZELX_TEXT && id <= ID_ZELX_PROPERTY);
}

const AttributeDefinition* PageNames::findAnyAttribute(const ElementDefinition& element, std::string_view asWritten) {
  scratch_.assign(asWritten);
  upperCase(scratch_);
  return element.findAttribute(scratch_);
}

void PageNames::grow() {
  std::vector<PageName*> larger(slots_.size() * 2, nullptr);
  const std::size_t mask = larger.size() - 1;
  for (PageName& entry : entries_) {
    std::size_t i = entry.hash & mask;
    while (larger[i]) i = (i + 1) & mask;
    larger[i] = &entry;
  }
  slots_.swap(larger);
}

void PageNames::declarationsChanged() {
  ++generation_;
  recentNames_.fill({});
  recentAttributes_.fill({});
}

}  // namespace zeldom40

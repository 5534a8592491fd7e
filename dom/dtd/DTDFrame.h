// Internal. The tables of a parsed DTD.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "dom/dtd/AttributeTable.h"
#include "dom/dtd/ContentTable.h"
#include "dom/dtd/ElementDefinition.h"
#include "dom/dtd/FrameTables.h"
#include "dom/dtd/Hash.h"
#include "dom/dtd/NameTable.h"
#include "dom/dtd/ParserType.h"

namespace zeldom40 {

// A parameter entity.
struct EntityRecord {
  std::string name;
  std::string text;  // the literal, or the keyword SYSTEM or PUBLIC of an external entity
  std::string systemId;
  std::string publicId;
};

// A general entity.
struct GeneralEntityRecord {
  std::uint32_t flags = 0;  // nothing sets it
  std::string text;         // a character reference is kept in the marked form
  std::string systemId;
  std::string publicId;
  std::string notation;
  std::size_t order = 0;  // 0-based, among the general entities as they were declared
};

// The name of a character.
struct CharEntityRecord {
  std::uint32_t code = 0;
  std::string name;
  std::string text;  // the marked form
};

// Where the declarations behind a public identifier are.
struct CatalogRecord {
  std::string path;
};

// Characters that have a name, by code. The first name of a code stays.
using CharEntityTable = std::map<std::uint32_t, CharEntityRecord>;

// The text of the built-in DTD, which is constant, is nearly all about elements and characters that a page never names.
// So its tables take down where these parts stand, and the first question about one reads it. Making a DOM costs a
// sixth of the instructions that reading all would, and a fifth of the page faults. A part says the same now and later,
// for whatever it refers to was declared before it, and the first declaration of an entity is the one that counts.

// The content of one declaration: the text behind the flags, with the ">".
struct DeferredContent {
  ParserType::_dtd_frame* frame;
  std::string_view text;
  std::size_t first;  // its definitions in `elementList`
  std::size_t count;
};

// One list of attributes: the text behind the names, with the ">".
struct DeferredList {
  ParserType::_dtd_frame* frame;
  std::string_view text;
  const AttributeListHolder* list = nullptr;  // once it is read
};

// Declarations of general entities, one behind the other, from the name of the first. No name is there twice.
struct DeferredEntities {
  std::string_view text;
  std::size_t count = 0;
};

// Owned by the parser that made it. Everything in it lives until then: attributes of pages point at definitions whose
// list was replaced since, and elements at definitions.
struct ParserType::_dtd_frame {
  _dtd_frame();
  ~_dtd_frame();
  _dtd_frame(const _dtd_frame&) = delete;
  _dtd_frame& operator=(const _dtd_frame&) = delete;

  Hash<EntityRecord>* parameterEntities;
  Hash<ElementDefinition>* elements;  // by upper-case name
  // Every definition parsed, also those that an earlier one keeps out; but of a page's only the former.
  std::vector<ElementDefinition*>* elementList;
  Hash<CatalogRecord>* catalog;  // nothing in the library fills it

  // General entities by name, and how many there are.
  Hash<GeneralEntityRecord>& generalEntities() {
    if (deferredEntities.count) readEntities();
    return generalEntities_;
  }
  std::size_t generalEntityCount() const { return generalEntities_.size() + deferredEntities.count; }
  CharEntityTable& charEntities() {
    if (deferredEntities.count) readEntities();
    return charEntities_;
  }

  std::vector<ElementDefinition*> winners;  // the definitions of `elements`, in order: their ordinals
  NameTable names;
  unsigned generation = 0;                 // grows with every declaration of an element
  std::unique_ptr<ContentTable> contents;  // made by contentTable()
  int tableUses = 0;                       // see TableUse
  FrameEntities entityTable{this};
  FrameCharacterNames characterNames{this};
  // What is kept of the declarations of pages, bounded: their text must neither fill the memory nor make every later
  // question expensive.
  struct PageShare {
    int names = 0;
    int tokens = 0;
    int impliedTokens = 0;  // those in models of elements whose start tags may be omitted: every walk may come there
    std::size_t bytes = 0;  // about; entities and attribute lists
  };
  PageShare pageShare;
  // The attribute lists that pages declared, by all that they say: one that is read again is the old one.
  std::map<std::string, const AttributeListHolder*, std::less<>> pageLists;
  unsigned cuts = 0;      // grows when something that a text declares is left out because of a bound
  unsigned readings = 0;  // grows with every text that is read into the tables
  // What a page parser keeps for the next page of this DTD.
  struct ParserNotes {
    virtual ~ParserNotes() = default;
  };
  std::unique_ptr<ParserNotes> parserNotes;
  int openFiles = 0;  // external entities being read, one inside the other

  // Owners of what the tables refer to.
  std::deque<EntityRecord> parameterRecords;
  std::deque<GeneralEntityRecord> generalRecords;
  std::vector<std::unique_ptr<AttributeListHolder>> attributeLists;
  std::unique_ptr<ListedNames> listedNames;  // made by the first list

  // What nobody has asked for yet.
  std::deque<DeferredContent> deferredContents;
  std::deque<DeferredList> deferredLists;
  DeferredEntities deferredEntities;
  // Reads all of it; for those who count nodes or memory.
  void readDeferred();

 private:
  void readEntities();

  Hash<GeneralEntityRecord> generalEntities_{Hash<GeneralEntityRecord>::kFrameBuckets};
  CharEntityTable charEntities_;
};

struct ParserType::_dtd_parser_frame {
  _dtd_frame* frame;
};

// The frame's compiled content models. A declaration that came since the last call drops all that was compiled:
// answers and sets from before the call are gone then.
ContentTable& contentTable(ParserType::_dtd_frame& frame);

// Held by all that keep sets of exclusions of a content table. When the last of them goes, a table that has many is
// dropped with them: elements with exclusions, nested in every order, make a set for each tag of a page, and the next
// page other ones.
class TableUse {
 public:
  // `frame` may be null.
  explicit TableUse(ParserType::_dtd_frame* frame) : frame_(frame) {
    if (frame_) ++frame_->tableUses;
  }
  ~TableUse() {
    if (frame_ && --frame_->tableUses == 0) dropManySets();
  }
  TableUse(const TableUse&) = delete;
  TableUse& operator=(const TableUse&) = delete;

 private:
  void dropManySets();
  ParserType::_dtd_frame* frame_;
};

}  // namespace zeldom40

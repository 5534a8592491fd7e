// Internal. The source of a text across edits of its plain form: what an edit did not touch keeps its bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zeldom40 {

class CharacterNames;
class EntityTable;

// What references of a source mean, and how characters are written. Null is an empty table.
struct ReferenceTables {
  const EntityTable* entities = nullptr;
  const CharacterNames* names = nullptr;
};

// All of these walk a source and its plain form in step, in linear time. White space goes together however long each
// run is, and may be missing from either form at its ends, for layout breaks lines there. Where the two do not go
// together (one of them was set alone) the plain form decides, and every character of it is written anew.

// The source of `after`, which an edit made of the plain form `before`, whose source is `raw`. New is what lies between
// the longest common prefix of the two and then their longest common suffix, in whole units of the marked form; a
// reference or a "<" in front of it that it would lengthen is written anew with it.
std::string carrySource(std::string_view raw, std::string_view before, std::string_view after,
                        const ReferenceTables& tables);

// The source of the bytes from `from` to `to` of the plain form `plain`; both are between units. A reference that is
// cut is written out.
std::string cutSource(std::string_view raw, std::string_view plain, std::size_t from, std::size_t to,
                      const ReferenceTables& tables);

// Appends another source. What ends `raw` still means the same.
void joinSource(std::string& raw, std::string_view behind, const ReferenceTables& tables);

// The source as it is made of a plain form, but with the references of `raw` that nobody here can read (hexadecimal,
// unknown, out of range) as they stand.
std::string remakeSource(std::string_view raw, std::string_view plain, const ReferenceTables& tables);

}  // namespace zeldom40

// Internal. Between raw source text, in which characters are written as references, and the marked form, in which the
// plain text of texts and attribute values keeps them (the bytes are listed in CharHelpers.h).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zeldom40 {

// What a table says about an entity. The views live as long as the table keeps the entity.
struct EntityText {
  std::string_view text;  // the replacement, in the marked form
  std::string_view publicId;
  std::string_view systemId;
  std::size_t order = 0;  // the number of entities that were declared before it
};

// The entities of a document type.
class EntityTable {
 public:
  virtual ~EntityTable() = default;
  // Fills `out` and returns true if the entity is known. Names compare exactly, with their case.
  virtual bool find(std::string_view name, EntityText& out) const = 0;
};

// The names by which characters are written.
class CharacterNames {
 public:
  virtual ~CharacterNames() = default;
  // The name without "&" and ";"; empty if the character has none.
  virtual std::string_view nameOf(unsigned code) const = 0;
};

// In all of these a null table is an empty one, and time is linear in the text.

// The length of the unit at `i`, of those that the conversions below make; 1 for any other byte, also for a mark byte
// that opens none: what stands behind it may be markup. Needs `i < text.size()`.
size_t unitAt(std::string_view text, size_t i);

// Reads the decimal digits at `offset`, which is behind the "&#". Returns the code, 1 to 65534, with the digits and a
// following ";" counted in `*length`; 0, with `*length` 0, for no digit, more than five, or another code.
// Hexadecimal references are not read. `length` may be null.
int parseCharRef(std::string_view text, size_t offset, int* length);

// Reads the reference that begins at the "&" at `amp`. Returns its length with the "&" and a following ";", and in
// `meaning` what stands for it in the marked form; 0 for what is none, or is unknown.
size_t readReference(std::string_view text, size_t amp, const EntityTable* table, std::string& meaning);

// Raw text to marked text: replaces the references that begin in the `length` bytes from byte `start`. Unknown and
// malformed ones stay as written. A range outside of the text is cut to it. Returns the change in length.
int expandReferences(std::string& text, int start, int length, const EntityTable* table);

// Plain text to marked text: marks each quote, "&", "<" and ">" that is not marked yet.
void protectMarkup(std::string& text);

// Plain text to source text: writes quotes, "<", ">" and "&" as references. With `keepReferences` an "&" stays where it
// opens a numeric reference or one to an entity of `table`, and on code page 1252 the euro byte becomes "&#8364;".
// Units of the marked form stay as they are.
void escapeMarkup(std::string& text, bool keepReferences, const EntityTable* table, int codepage);

// Source text to single bytes: replaces the references that a byte of `codepage` can hold. `table` serves only code
// page 1252. The text may hold a NUL afterwards.
void unescapeMarkup(std::string& text, const EntityTable* table, int codepage);

// Marked text to raw text, into `out`, which may be the string behind `marked`: writes each unit as "&name;" where it
// may be written so and `names` has the code, else as "&#code;".
void restoreReferences(std::string_view marked, std::string& out, const CharacterNames* names);

// Appends the unit for a character given by number; only the low 16 bits of `code` count.
void appendMarkedCode(unsigned code, std::string& out);

}  // namespace zeldom40

#pragma once

#include <QByteArray>

/// Qt's binary form of a JSON document: a header of two words (the tag "qbjs" and the version 1),
/// then the root. An object is three words, its size, twice its count of members plus one, and the
/// place of its table, then its data, then the table with the place of each member. Places count
/// from the beginning of the object, words are little-endian. A member is a word and its name; the
/// word's bits are the type (3), whether text is Latin-1 or a number stands in the word itself (1),
/// whether the name is Latin-1 (1), and the value or its place (27).
namespace BinaryJson {

/// Whether the bytes hold an object of which all lies inside them, whose members are no objects or
/// arrays and together no larger than it. Qt's own check, as of 5.15, reads outside the bytes where
/// a size is close to 2^32, and lets members share theirs, so that a few hundred bytes may unfold
/// into more than any memory holds.
bool isFlatObject(const QByteArray &bytes);

} // namespace BinaryJson

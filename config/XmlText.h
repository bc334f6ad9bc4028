// XmlText - prepares configuration text before TinyXML sees it, shielding the
// host from four parser defects: a text that ends inside a multi-byte UTF-8
// sequence makes it read past its buffer (so texts are padded with NULs), a
// directory handed to its file loader throws (so only regular files are
// read), it recurses once per nesting level and it compares every attribute
// of an element with all earlier ones (so documents past either limit, or
// with an attribute value past the library's name length, are refused before
// parsing).
// Thread-safety: pure functions.
#pragma once

#include <string>

#include "pelmora.h"

namespace PelmoraLib {
namespace XmlText {

// No configuration needs more; deeper documents could exhaust a small host
// thread's stack inside the parser.
const int kMaxDepth = 128;
// Elements of a configuration carry a handful. The parser's time grows with
// the square of the count: 40,000 on one element keep it busy for seconds.
const int kMaxAttributes = 256;
// Names, value references and keywords are attribute values; a longer one is
// a wrong document, not a name.
const int kMaxValueLength = PELMORA_MAX_NAME_LENGTH;

// A parse-ready copy of text: padded with NULs past its end.
std::string Padded(const char* text);

// Reads a regular file as the parser's own file loader would (the text ends at
// its first NUL; CR LF and lone CR become LF), padded. False with a
// description in `error` otherwise.
bool ReadFile(const char* path, std::string& text, std::string& error);

// False, with a description in `error`, when an element lies deeper than
// kMaxDepth, carries more than kMaxAttributes attributes or an attribute
// value longer than kMaxValueLength bytes. The padded text
// is read by the parser's own rules, so what it finds is what the parser
// would meet.
bool CheckLimits(const std::string& text, std::string& error);

}  // namespace XmlText
}  // namespace PelmoraLib

// XmlText - prepares configuration text before TinyXML sees it, shielding the
// host from three parser defects: a text that ends inside a multi-byte UTF-8
// sequence makes it read past its buffer (so texts are padded with NULs), a
// directory handed to its file loader throws (so only regular files are
// read), and it recurses once per nesting level (so deep documents are
// refused before parsing).
// Thread-safety: pure functions.
#pragma once

#include <string>

namespace PelmoraLib {
namespace XmlText {

// No configuration needs more; deeper documents could exhaust a small host
// thread's stack inside the parser.
const int kMaxDepth = 128;

// A parse-ready copy of text: padded with NULs past its end.
std::string Padded(const char* text);

// Reads a regular file as the parser's own file loader would (CR LF and lone
// CR become LF), padded. False with a description in `error` otherwise.
bool ReadFile(const char* path, std::string& text, std::string& error);

// False, with a description in `error`, when elements nest deeper than
// kMaxDepth. Comments, CDATA, declarations and quoted attribute values are
// skipped, so it never undercounts what the parser would recurse into.
bool CheckNesting(const std::string& text, std::string& error);

}  // namespace XmlText
}  // namespace PelmoraLib

// TunableDocument - a configuration's text and the numeric constants of some
// of its gestures' qualifications, located in that text, so that new values
// are written over the old ones and nothing else of the file changes
// (comments, layout, quoting). It also writes a gesture's clones: copies of
// its element, each under its own name and with its own constants, placed
// right after it, so that one replay evaluates many candidates.
// A constant is an operand that is a number rather than a reference: an
// integer (no dot; it stays an integer) or a float (with a dot). Equal and
// NoEqual are left alone: moving an equality's constant finds nothing.
// A declared int or float value can be a constant too, when no function
// computes or reads it and the qualifications of one gesture alone read it:
// its initial value is what changes, and in a clone its candidate number is
// written in place of each reference to it, which the library reads alike.
// With a mirror, each gesture is tied to its twin (the gesture whose name
// swaps Right and Left): the twin's qualifications must match the gesture's
// one for one with Right and Left swapped and constants of the same
// magnitude, and the twin's constants are written with the gesture's, a
// sign that differs between the two staying different.
// Read-only after Load: safe to share between threads.
#pragma once

#include <string>
#include <vector>

#include "tools/ConfigDocument.h"

namespace PelmoraTool {

struct TunableConstant {
    size_t gesture = 0;     // index into TunableDocument::gestures
    XmlPlace place;         // the Qualification, or the declared value's Value element
    std::string attribute;  // "value1" or "value2", or the declared value's name
    std::string text;       // as the document writes it
    double value = 0.0;
    bool integer = false;
    size_t offset = 0;      // of the text in the document
    std::vector<size_t> references;  // a declared value: where the gesture's operands name it
    size_t twinOffset = std::string::npos;  // where the mirror twin writes this constant, if tied
    std::string twinText;
    bool twinFlipped = false;  // the twin writes it with the other sign

    // What the twin writes when this constant is written as `written`.
    std::string TwinText(const std::string& written) const;

    // "648:value2" or "12:ReachLimit": the document's line and the attribute or value.
    std::string Label() const;
};

class TunableDocument {
public:
    // Throws std::runtime_error naming the file for an unknown gesture, a
    // gesture named twice or declared twice, a gesture without a constant to
    // tune, a declared value that cannot be one, and (with `mirror`) a twin
    // that is missing, named too, or not the gesture's mirror image.
    static TunableDocument Load(const std::string& path, const std::vector<std::string>& gestures,
                                const std::vector<std::string>& values = {}, bool mirror = false);

    // The name with Right and Left swapped.
    static std::string MirrorName(const std::string& name);

    // The document with every constant written as `texts` gives (one per
    // constant, in the order of `constants`).
    std::string Written(const std::vector<std::string>& texts) const;

    // As Written, plus the clones of gesture `gesture`: clone k is named
    // CloneName(gesture, k) and its constants are candidates[k] (one text per
    // constant of that gesture, in order); with a mirror, the twin's clone k
    // is named TwinCloneName(gesture, k) and holds the same candidate.
    std::string WithClones(const std::vector<std::string>& texts, size_t gesture,
                           const std::vector<std::vector<std::string>>& candidates) const;
    std::string CloneName(size_t gesture, size_t clone) const;
    std::string TwinCloneName(size_t gesture, size_t clone) const;

    // The constants of one gesture, as indices into `constants`.
    std::vector<size_t> ConstantsOf(size_t gesture) const;

    std::string path;
    std::string text;
    std::vector<std::string> gestures;  // the names asked for, in order
    std::vector<TunableConstant> constants;
    std::vector<std::string> twins;  // by gesture, with a mirror; empty without

private:
    struct Span {
        size_t begin = 0, end = 0;          // the Gesture element, end past "</Gesture>"
        size_t nameBegin = 0, nameEnd = 0;  // its name attribute's text
    };
    struct Edit {
        size_t offset, length;
        std::string text;
    };
    static std::string Apply(const std::string& text, size_t begin, size_t end, std::vector<Edit> edits);
    struct Locator;
    void AddValue(const std::string& name, const ConfigDocument& config, const Locator& locate);
    void TieTwin(size_t gesture, const GestureEntry& entry, const ConfigDocument& config, const Locator& locate);
    std::string Clones(const Span& span, const std::vector<std::vector<std::string>>& candidates,
                       const std::vector<size_t>& own, bool twin) const;
    std::vector<Span> m_Spans;      // by gesture
    std::vector<Span> m_TwinSpans;  // by gesture, with a mirror
};

}  // namespace PelmoraTool

// LineCountingBuffer - hands on the characters of another stream buffer one
// at a time and counts the line ends it has passed, so that a parser reading
// a whole document (the JSON importers) can name the line it has reached.
// Not thread-safe: one reader at a time.
#pragma once

#include <cstddef>
#include <streambuf>

namespace PelmoraTool {

class LineCountingBuffer : public std::streambuf {
public:
    explicit LineCountingBuffer(std::streambuf* source) : m_Source(source) {}

    // The line of the character read last, from 1.
    size_t Line() const { return m_Line; }

protected:
    // No get area of its own: every read comes through here and is counted.
    int_type underflow() override { return m_Source->sgetc(); }
    int_type uflow() override {
        const int_type next = m_Source->sbumpc();
        if (m_AfterLineEnd) ++m_Line;
        m_AfterLineEnd = next == '\n';
        return next;
    }

private:
    std::streambuf* m_Source;
    size_t m_Line = 1;
    bool m_AfterLineEnd = false;
};

}  // namespace PelmoraTool

// ConstantSearch - the search of one gesture's constants for the highest F1
// on some subjects, ties going to the lower median latency, then to the
// values it already holds. Each pass proposes, around the current values,
// two steps down and two up along every constant (inside its range) and the
// combination of the single moves that helped in the last pass; it moves to
// the best proposal when that beats the current values, and halves its steps
// when none does. It is done when every step has shrunk below its constant's
// resolution. Values live on that resolution, so that a value and its text
// in the document are the same number.
// Not thread-safe: one owner drives it.
#pragma once

#include <string>
#include <vector>

namespace PelmoraTool {

struct ConstantRange {
    double low = 0.0, high = 0.0;
    double resolution = 1.0;  // 1 for integers, 10^-decimals for floats
    bool integer = true;
};

struct SearchScore {
    double f1 = 0.0;
    double latencyMs = 0.0;  // median

    bool Beats(const SearchScore& other) const;
};

class ConstantSearch {
public:
    ConstantSearch(std::vector<double> start, std::vector<ConstantRange> ranges, std::string leftOut);

    // The next pass's candidates, the current values first.
    std::vector<std::vector<double>> Proposals() const;
    // The scores of Proposals(), in order.
    void Take(const std::vector<SearchScore>& scores);
    bool Done() const;

    const std::vector<double>& Current() const { return m_Current; }
    // The subject the search does not see ("" when it sees all).
    const std::string& LeftOut() const { return m_LeftOut; }

    // A value as the document writes it, and the value that text holds.
    static std::string Text(double value, const ConstantRange& range);
    static double OnResolution(double value, const ConstantRange& range);

private:
    std::vector<std::vector<double>> m_Moves;  // single-constant moves, in Proposals' order after the current values
    std::vector<size_t> m_MovedConstant;
    std::vector<double> m_Current;
    std::vector<double> m_Combined;  // empty when the last pass found no helpful move
    std::vector<double> m_Steps;
    std::vector<ConstantRange> m_Ranges;
    std::string m_LeftOut;

    void ProposeMoves();
};

}  // namespace PelmoraTool

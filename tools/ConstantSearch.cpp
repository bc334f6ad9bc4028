#include "tools/ConstantSearch.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace PelmoraTool {

namespace {

// Steps along each constant per side and pass.
const int kStepsPerSide = 2;

}  // namespace

bool SearchScore::Beats(const SearchScore& other) const {
    if (f1 != other.f1) return f1 > other.f1;
    return latencyMs < other.latencyMs;
}

ConstantSearch::ConstantSearch(std::vector<double> start, std::vector<ConstantRange> ranges, std::string leftOut)
    : m_Current(std::move(start)), m_Ranges(std::move(ranges)), m_LeftOut(std::move(leftOut)) {
    for (const ConstantRange& range : m_Ranges) m_Steps.push_back((range.high - range.low) / (2 * kStepsPerSide));
    ProposeMoves();
}

std::string ConstantSearch::Text(double value, const ConstantRange& range) {
    char text[64];
    if (range.integer) {
        snprintf(text, sizeof text, "%lld", static_cast<long long>(std::llround(value)));
        return text;
    }
    const int decimals = static_cast<int>(std::lround(-std::log10(range.resolution)));
    snprintf(text, sizeof text, "%.*f", decimals, value);
    std::string written = text;
    // A float keeps its dot and one decimal: without a dot the library reads an integer.
    while (written.back() == '0' && written[written.size() - 2] != '.') written.pop_back();
    return written == "-0.0" ? "0.0" : written;
}

double ConstantSearch::OnResolution(double value, const ConstantRange& range) {
    return std::strtod(Text(value, range).c_str(), nullptr);
}

void ConstantSearch::ProposeMoves() {
    m_Moves.clear();
    m_MovedConstant.clear();
    for (size_t c = 0; c < m_Current.size(); ++c) {
        const ConstantRange& range = m_Ranges[c];
        if (m_Steps[c] < range.resolution) continue;
        std::vector<double> seen{m_Current[c]};
        for (int k = -kStepsPerSide; k <= kStepsPerSide; ++k) {
            const double value = OnResolution(std::clamp(m_Current[c] + k * m_Steps[c], range.low, range.high), range);
            if (std::find(seen.begin(), seen.end(), value) != seen.end()) continue;
            seen.push_back(value);
            m_Moves.push_back(m_Current);
            m_Moves.back()[c] = value;
            m_MovedConstant.push_back(c);
        }
    }
}

std::vector<std::vector<double>> ConstantSearch::Proposals() const {
    std::vector<std::vector<double>> proposals{m_Current};
    proposals.insert(proposals.end(), m_Moves.begin(), m_Moves.end());
    if (!m_Combined.empty()) proposals.push_back(m_Combined);
    return proposals;
}

void ConstantSearch::Take(const std::vector<SearchScore>& scores) {
    const SearchScore current = scores.front();
    // Per constant, its best single move that beats the current values.
    std::vector<double> combined = m_Current;
    std::vector<SearchScore> bestAlong(m_Current.size(), current);
    size_t helped = 0;
    for (size_t m = 0; m < m_Moves.size(); ++m) {
        const size_t c = m_MovedConstant[m];
        if (!scores[m + 1].Beats(bestAlong[c])) continue;
        helped += combined[c] == m_Current[c] ? 1 : 0;
        bestAlong[c] = scores[m + 1];
        combined[c] = m_Moves[m][c];
    }
    size_t best = 0;
    for (size_t p = 1; p < scores.size(); ++p) {
        if (scores[p].Beats(scores[best])) best = p;
    }
    if (best == 0) {
        // The last step before giving up on a constant is its resolution.
        for (size_t c = 0; c < m_Steps.size(); ++c)
            m_Steps[c] = m_Steps[c] > m_Ranges[c].resolution ? std::max(m_Steps[c] / 2, m_Ranges[c].resolution) : m_Steps[c] / 2;
    } else {
        m_Current = Proposals()[best];
    }
    // Two or more helpful moves along different constants may help together.
    m_Combined = helped >= 2 && combined != m_Current ? combined : std::vector<double>();
    ProposeMoves();
}

bool ConstantSearch::Done() const { return m_Moves.empty() && m_Combined.empty(); }

}  // namespace PelmoraTool

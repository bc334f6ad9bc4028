// WorkerPool - runs one piece of work per item in forked worker processes
// (the library is one instance per process, so processes, not threads,
// replay in parallel) and gathers each item's JSON result, with a progress
// bar counting `unit`s. Not thread-safe: Run forks, so call it from a
// single-threaded process.
#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <vector>

namespace PelmoraTool {

class WorkerPool {
public:
    using Work = std::function<nlohmann::ordered_json(size_t item)>;

    // The results of work(0) .. work(names.size() - 1), in order, from
    // `workers` processes (0: one per core). A std::exception thrown by the
    // work is rethrown here as std::runtime_error with its text, the first
    // item's first; `names` name the items whose worker died.
    static std::vector<nlohmann::ordered_json> Run(const std::vector<std::string>& names, unsigned workers,
                                                   const char* unit, const Work& work);
};

}  // namespace PelmoraTool

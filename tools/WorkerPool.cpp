#include "tools/WorkerPool.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <thread>

#include "tools/ProgressBar.h"

namespace PelmoraTool {

namespace {

using json = nlohmann::ordered_json;

// Fewer items than this finish before a bar would tell anything.
const size_t kManyItems = 10;

struct Worker {
    pid_t pid;
    int fd;
    std::string pending;
};

void WriteAll(int fd, const std::string& text) {
    for (size_t done = 0; done < text.size();) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n <= 0) return;
        done += static_cast<size_t>(n);
    }
}

// Each result travels as one line of JSON: {"i": item, "r": result} or {"i": item, "e": error}.
[[noreturn]] void Work(const WorkerPool::Work& work, size_t items, size_t first, size_t step, int fd) {
    for (size_t i = first; i < items; i += step) {
        try {
            WriteAll(fd, json{{"i", i}, {"r", work(i)}}.dump() + "\n");
        } catch (const std::exception& error) {
            WriteAll(fd, json{{"i", i}, {"e", error.what()}}.dump() + "\n");
        }
    }
    _exit(0);
}

std::vector<Worker> StartWorkers(const WorkerPool::Work& work, size_t items, unsigned wanted) {
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    const size_t count = std::min<size_t>(wanted ? wanted : cores, items);
    std::vector<Worker> workers;
    for (size_t w = 0; w < count; ++w) {
        int ends[2];
        if (pipe(ends) != 0) throw std::runtime_error("cannot start a worker: no pipe");
        fflush(nullptr);
        const pid_t pid = fork();
        if (pid < 0) throw std::runtime_error("cannot start a worker process");
        if (pid == 0) {
            close(ends[0]);
            Work(work, items, w, count, ends[1]);
        }
        close(ends[1]);
        workers.push_back({pid, ends[0], ""});
    }
    return workers;
}

// Reads what the workers send until each has closed its pipe.
void Collect(std::vector<Worker>& workers, std::vector<json>& messages, const char* unit) {
    ProgressBar progress(messages.size(), unit, kManyItems);
    size_t done = 0, open = workers.size();
    std::vector<pollfd> polls;
    for (const Worker& worker : workers) polls.push_back({worker.fd, POLLIN, 0});
    char buffer[1 << 16];
    while (open > 0) {
        if (poll(polls.data(), polls.size(), -1) < 0) continue;
        for (size_t w = 0; w < workers.size(); ++w) {
            if (polls[w].fd < 0 || !(polls[w].revents & (POLLIN | POLLHUP))) continue;
            const ssize_t n = read(polls[w].fd, buffer, sizeof buffer);
            if (n <= 0) {
                close(polls[w].fd);
                polls[w].fd = -1;
                --open;
                continue;
            }
            std::string& pending = workers[w].pending;
            pending.append(buffer, static_cast<size_t>(n));
            for (size_t end; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1)) {
                json message = json::parse(pending.substr(0, end));
                const size_t index = message.at("i").get<size_t>();
                messages.at(index) = std::move(message);
                progress.Update(++done);
            }
        }
    }
    for (const Worker& worker : workers) waitpid(worker.pid, nullptr, 0);
}

}  // namespace

std::vector<json> WorkerPool::Run(const std::vector<std::string>& names, unsigned workers, const char* unit, const Work& work) {
    std::vector<Worker> started = StartWorkers(work, names.size(), workers);
    std::vector<json> messages(names.size());
    Collect(started, messages, unit);
    std::vector<json> results;
    for (size_t i = 0; i < messages.size(); ++i) {
        if (messages[i].is_null()) throw std::runtime_error(names[i] + ": the replay stopped without a result");
        if (messages[i].contains("e")) throw std::runtime_error(messages[i]["e"].get<std::string>());
        results.push_back(std::move(messages[i]["r"]));
    }
    return results;
}

}  // namespace PelmoraTool

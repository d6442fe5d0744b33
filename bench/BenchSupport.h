#pragma once

// Measuring helpers shared by the benchmarks: timing, verdicts, the page cache and
// the memory figures of a process.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace benchsupport {

using Clock = std::chrono::steady_clock;
constexpr double kMegabyte = 1024.0 * 1024.0;

inline double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Tracks PASS/FAIL of every checked figure.
class Verdicts {
public:
    void Ratio(const std::string& name, double value, double target) {
        Report(name, value >= target, "ratio " + Format(value, 3) + " (target >= " + Format(target, 2) + ")");
    }
    void Check(const std::string& name, bool ok, const std::string& detail) { Report(name, ok, detail); }
    bool AllPassed() const { return m_failures == 0; }
    static std::string Format(double value, int decimals) {
        char text[64];
        std::snprintf(text, sizeof text, "%.*f", decimals, value);
        return text;
    }

private:
    void Report(const std::string& name, bool ok, const std::string& detail) {
        std::cout << (ok ? "PASS  " : "FAIL  ") << name << ": " << detail << "\n";
        m_failures += ok ? 0 : 1;
    }
    int m_failures = 0;
};

// Reads the whole file once so that every timed run starts from the page cache.
inline std::uint64_t WarmPageCache(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY);
    if (fd < 0)
        return 0;
    std::vector<char> buffer(4 << 20);
    std::uint64_t total = 0;
    for (ssize_t n; (n = ::read(fd, buffer.data(), buffer.size())) > 0;)
        total += static_cast<std::uint64_t>(n);
    ::close(fd);
    return total;
}

// Best (shortest) time of `runs` runs; false as soon as one run fails.
template <typename Timed>
inline bool BestOf(int runs, double& best, Timed timed) {
    best = 0;
    for (int i = 0; i < runs; ++i) {
        double seconds = 0;
        if (!timed(seconds))
            return false;
        best = i == 0 ? seconds : std::min(best, seconds);
    }
    return true;
}

inline std::string Speed(double bytes, double seconds) {
    return Verdicts::Format(bytes / kMegabyte, 1) + " MB in " + Verdicts::Format(seconds, 3) + " s = " +
           Verdicts::Format(bytes / kMegabyte / seconds, 1) + " MB/s";
}

inline long StatusKilobytes(const char* key) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(key, 0) == 0)
            return std::atol(line.c_str() + std::strlen(key));
    return -1;
}

inline std::map<std::string, long long> ParseKeyValues(const std::string& text) {
    std::map<std::string, long long> values;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const auto equals = line.find('=');
        if (equals != std::string::npos)
            values[line.substr(0, equals)] = std::atoll(line.c_str() + equals + 1);
    }
    return values;
}

} // namespace benchsupport

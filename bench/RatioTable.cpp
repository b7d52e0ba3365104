#include "RatioTable.h"

#include "Median.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Result
{
    std::string name;
    std::string peers;
    std::vector<double> times; ///< seconds
    int64_t place = 0;         ///< in the order of registration
};

std::string timeText(double seconds)
{
    char text[32];
    if (seconds < 1e-3)
        std::snprintf(text, sizeof text, "%.2f us", seconds * 1e6);
    else
        std::snprintf(text, sizeof text, "%.2f ms", seconds * 1e3);
    return text;
}

class RatioTable : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

    bool failed() const { return m_failed; }

private:
    const Result *find(const std::string &name) const;

    std::vector<Result> m_results;
    bool m_failed = false;
};

const Result *RatioTable::find(const std::string &name) const
{
    const auto found = std::find_if(m_results.begin(), m_results.end(),
                                    [&name](const Result &result) { return result.name == name; });
    return found == m_results.end() ? nullptr : &*found;
}

void RatioTable::ReportRuns(const std::vector<Run> &runs)
{
    Result result;
    for (const Run &run : runs) {
        result.name = run.run_name.function_name;
        if (run.error_occurred) {
            std::fprintf(stderr, "%s: %s\n", result.name.c_str(), run.error_message.c_str());
            m_failed = true;
            return;
        }
        if (run.run_type != Run::RT_Iteration)
            continue;
        result.place = run.family_index;
        result.peers = run.report_label;
        result.times.push_back(run.GetAdjustedRealTime()
                               / benchmark::GetTimeUnitMultiplier(run.time_unit));
    }
    if (!result.times.empty())
        m_results.push_back(result);
}

void RatioTable::Finalize()
{
    std::sort(m_results.begin(), m_results.end(),
              [](const Result &a, const Result &b) { return a.place < b.place; });
    std::printf("%-34s %12s %12s   %-26s %12s %8s\n", "benchmark", "median", "fastest", "against",
                "median", "ratio");
    for (const Result &result : m_results) {
        const double time = median(result.times);
        const double fastest = *std::min_element(result.times.begin(), result.times.end());
        const auto printStart = [&] {
            std::printf("%-34s %12s %12s", result.name.c_str(), timeText(time).c_str(),
                        timeText(fastest).c_str());
        };
        if (result.peers.empty()) {
            printStart();
            std::printf("\n");
        }
        std::istringstream peers(result.peers);
        for (std::string name; peers >> name;) {
            printStart();
            if (const Result *peer = find(name)) {
                const double peerTime = median(peer->times);
                std::printf("   %-26s %12s %8.2f\n", name.c_str(), timeText(peerTime).c_str(),
                            time / peerTime);
            } else {
                std::printf("   %-26s %12s %8s\n", name.c_str(), "-", "-");
            }
        }
    }
}

} // namespace

int runBenchmarks(int argc, char **argv)
{
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    char repeated[] = "--benchmark_repetitions=5";
    char brief[] = "--benchmark_min_time=0.1";
    std::vector<char *> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, {interleaved, repeated, brief});
    auto count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    RatioTable table;
    const std::size_t ran = benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
    return ran == 0 || table.failed() ? 1 : 0;
}

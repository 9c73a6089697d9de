#include "support/ProcessorTime.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

namespace tarnovel::bench {

namespace {

std::map<std::string, std::vector<double>> &samples()
{
    static std::map<std::string, std::vector<double>> kept;
    return kept;
}

bool &anyMissed()
{
    static bool missed = false;
    return missed;
}

/// Machines are noisy: a tenth more is called missed, too, but fails nothing.
const char *verdict(double value, double budget)
{
    constexpr double noise = 1.1;
    anyMissed() = anyMissed() || !(value <= noise * budget);
    return value <= budget ? "passed" : "MISSED";
}

rusage usage(__rusage_who who = RUSAGE_SELF)
{
    rusage result{};
    getrusage(who, &result);
    return result;
}

double milliseconds(const rusage &spent)
{
    const auto of = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return of(spent.ru_utime) + of(spent.ru_stime);
}

double livingMs(int process)
{
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) {
        return 0;
    }
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double peakMbOf(int process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            double kilobytes = 0;
            status >> kilobytes;
            return kilobytes / 1e3;
        }
    }
    return 0;
}

} // namespace

std::vector<int> childProcesses()
{
    std::vector<int> found;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream children(task.path() / "children");
        for (int child = 0; children >> child;) {
            found.push_back(child);
        }
    }
    return found;
}

double processorMs()
{
    double spent = milliseconds(usage()) + milliseconds(usage(RUSAGE_CHILDREN));
    for (const int child : childProcesses()) {
        spent += livingMs(child);
    }
    return spent;
}

double residentMb()
{
    long whole = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> whole >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

double peakResidentMb()
{
    double peak = static_cast<double>(usage().ru_maxrss) / 1e3;
    for (const int child : childProcesses()) {
        peak += peakMbOf(child);
    }
    return peak;
}

void add(const std::string &name, const std::function<void()> &work)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [name, work](benchmark::State &state) {
                                     for (const auto _ : state) {
                                         const double before = processorMs();
                                         work();
                                         const double spent = processorMs() - before;
                                         samples()[name].push_back(spent);
                                         state.SetIterationTime(spent / 1e3);
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(9)
        ->ReportAggregatesOnly(true)
        ->Unit(benchmark::kMillisecond);
}

double medianMs(const std::string &name)
{
    std::vector<double> &all = samples()[name];
    std::sort(all.begin(), all.end());
    return all.empty() ? std::nan("") : all[all.size() / 2];
}

void judge(const std::string &what, double value, const char *unit, double budget)
{
    if (std::isnan(value)) {
        return; // left out by the command line
    }
    std::printf("%-56s %7.2f %-2s (budget %.2f) %s\n", what.c_str(), value, unit, budget,
                verdict(value, budget));
}

void printRatio(const std::string &what, const std::string &name, const std::string &floor, double budget)
{
    if (std::isnan(medianMs(name)) && std::isnan(medianMs(floor))) {
        return; // left out by the command line
    }
    const double ratio = medianMs(name) / medianMs(floor);
    std::printf("%-44s %7.1f ms / %7.1f ms = %5.2f (budget %.2f) %s\n", what.c_str(), medianMs(name),
                medianMs(floor), ratio, budget, verdict(ratio, budget));
}

int exitStatus()
{
    return anyMissed() ? 1 : 0;
}

} // namespace tarnovel::bench

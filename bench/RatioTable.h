#pragma once

/// Runs the registered benchmarks several times, mixed so that a disturbance of the machine meets
/// them all, and prints a table of medians. A benchmark names its peers in its label, separated by
/// blanks; each peer gives a row with the ratio of the two medians, below 1 when the benchmark is
/// faster. Takes the options of Google Benchmark.
///
/// Returns the program's exit status: 0 if every benchmark ran and found its peers, or the options
/// left benchmarks out.
int runBenchmarks(int argc, char **argv);

// SPDX-License-Identifier: MIT
// Times programs from their start to the line "painted" on their standard output, in turns; prints medians and the
// ratio of the second to the first.
//
//     bench_opening ROUNDS FLOOR PROGRAM

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

/// In milliseconds; negative if the program ended without the line.
double timeToPaint(char* program) {
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        execl(program, program, static_cast<char*>(nullptr));
        _exit(127);
    }
    close(ends[1]);
    std::string output;
    double milliseconds = -1;
    char buffer[256];
    for (ssize_t length = 0; (length = read(ends[0], buffer, sizeof buffer)) > 0;) {
        output.append(buffer, static_cast<std::size_t>(length));
        if (milliseconds < 0 && output.find("painted") != std::string::npos)
            milliseconds = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return milliseconds;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: bench_opening ROUNDS FLOOR PROGRAM\n";
        return 64;
    }
    std::vector<double> times[2];
    const int rounds = std::atoi(argv[1]);
    for (int round = -2; round < rounds; ++round) // the first two warm the caches
        for (int which = 0; which < 2; ++which) {
            const double time = timeToPaint(argv[2 + which]);
            if (time < 0) {
                std::cerr << argv[2 + which] << " did not paint a window\n";
                return 1;
            }
            if (round >= 0)
                times[which].push_back(time);
        }
    const double floor = median(times[0]);
    const double program = median(times[1]);
    std::cout << "opening: bare window " << floor << " ms, imprinter " << program << " ms, ratio " << program / floor
              << " (claim: at most 2.5)\n";
    return program / floor <= 2.5 ? 0 : 1;
}

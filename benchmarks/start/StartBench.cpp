// Measures, side by side in one run, the program and the system's notepad: process start to painted window (both warm,
// taken in turns), memory with the window open, and the processor time of ten idle seconds.
#include <windows.h>

#include <cstdio>
#include <string>

#include "benchmarks/support/Measuring.h"
#include "benchmarks/support/StartedProgram.h"
#include "benchmarks/support/Times.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/ProcessFootprint.h"

namespace {

constexpr int kRounds = 11;
constexpr DWORD kSettleMs = 2000;
constexpr DWORD kIdleMs = 10'000;

using benchmark::StartedProgram;
using benchmark::Times;

// Processor time of the process so far, in ticks of 10 ms.
double ProcessorTicks(HANDLE process) {
    return e2e::ProcessorMs(process) / 10;
}

void Measure() {
    const std::wstring program = L"\"" + e2e::ProgramFolder() + L"Pixora.exe\" run";
    const std::wstring editor = L"notepad.exe";

    // One window stays open, so that the desktop's own start is not measured.
    const StartedProgram warm(editor);
    Times ours, theirs;
    for (int round = 0; round < kRounds; ++round) {
        ours.Add(StartedProgram(program).StartMs());
        theirs.Add(StartedProgram(editor).StartMs());
    }
    std::printf("start to painted window, median of %d:  Pixora %.0f ms, notepad %.0f ms, ratio %.2f (goal 1.3)\n",
                kRounds, ours.Median(), theirs.Median(), ours.Median() / theirs.Median());

    const StartedProgram open(program);
    std::printf("memory, working set:  Pixora %.1f MiB, notepad %.1f MiB (goal 43)\n", open.MemoryMiB(),
                warm.MemoryMiB());
    // Out of the window: while the pointer is inside, Wine asks again and again whether it has left.
    SetCursorPos(0, 0);
    Sleep(kSettleMs);
    const double before = ProcessorTicks(open.Process());
    Sleep(kIdleMs);
    std::printf("idle for 10 s:  %.0f ticks of 10 ms (goal 0)\n", ProcessorTicks(open.Process()) - before);
}

}  // namespace

int main() {
    return benchmark::Run(Measure);
}

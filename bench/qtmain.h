#pragma once
// Entry point of a benchmark that draws or opens windows: Qt on its offscreen platform.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QByteArray>

#define BENCHMARK_QT_MAIN()                                       \
    int main(int argc, char** argv) {                             \
        qputenv("QT_QPA_PLATFORM", "offscreen");                  \
        QApplication App(argc, argv);                             \
        QApplication::setStyle("fusion");                         \
        benchmark::Initialize(&argc, argv);                       \
        if (benchmark::ReportUnrecognizedArguments(argc, argv)) { \
            return 1;                                             \
        }                                                         \
        benchmark::RunSpecifiedBenchmarks();                      \
        return 0;                                                 \
    }

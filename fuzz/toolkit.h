#pragma once
// What the targets of controls share.
#include <QApplication>
#include <cstdio>
#include <string>

#include "fuzz/fuzzing.h"
#include "platform/window/messagebox.h"
#include "tests/sequences/choices.h"

/// Once, and to the end of the process: windows need the toolkit, and nobody is to see them.
inline void ProvideToolkit() {
    static const bool s_bProvided = [] {
        static int s_nArguments = 1;
        static char s_Name[] = "fuzz";
        static char* s_pArguments[] = {s_Name, nullptr};
        qputenv("QT_QPA_PLATFORM", "offscreen");
        // Stays: at the end of a process there is no right moment for it.
        static auto* const s_pApplication = new QApplication(s_nArguments, s_pArguments);
        s_pApplication->setStyle("fusion");
        OpenAllTopics();
        return true;
    }();
    Require(s_bProvided);
}

/// A sequence of events, as long as the input lasts, in order after each of them.
template <typename Sequence>
void PlaySequence(std::span<const std::uint8_t> Input) {
    ProvideToolkit();
    CByteChoices Choices(Input);
    Sequence Events(Choices);
    while (!Choices.AreUsedUp()) {
        Events.Step();
        const std::string Breach = Events.Check();
        if (!Breach.empty()) {
            std::fprintf(stderr, "not in order: %s\n", Breach.c_str());
        }
        Require(Breach.empty());
    }
    TakeShownMessages();
}

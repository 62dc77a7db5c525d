#pragma once
#include <string>

/// The state machines of both procedures as a page of the documents (Markdown with Mermaid diagrams), made
/// from their tables: docs/state-machines.md. The program of this name prints it, and a test holds the page
/// against it.
std::string MakeStateMachinesPage();

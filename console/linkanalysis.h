#pragma once
class CCheckReport;
struct CLinkFacts;

/// What was seen of a line, for people: what it means and what to do. Texts in the language in use.
void AnalyseLink(const CLinkFacts& rFacts, CCheckReport& rReport);

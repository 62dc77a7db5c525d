#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/statediagram.h"

#include <map>
#include <sstream>
#include <utility>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanetables.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanetables.h"

namespace {

/// "trigger [guard] / deed, deed".
std::string Describe(const Sequence::CTransition& rRow) {
    std::string Text = Sequence::ToText(rRow.m_Trigger);
    if (rRow.m_Guard != Sequence::eAlways) {
        Text += std::string(" [") + Sequence::ToText(rRow.m_Guard) + "]";
    }
    const char* pSeparator = " / ";
    for (const Sequence::Deed ToDo : rRow.m_Deeds) {
        if (ToDo != Sequence::eNoDeed) {
            Text += std::exchange(pSeparator, ", ") + std::string(Sequence::ToText(ToDo));
        }
    }
    if (rRow.m_Warning != 0) {
        Text += " / warning " + std::to_string(rRow.m_Warning);
    }
    return Text;
}

void Append(std::ostream& rPage, const char* pTitle, const Sequence::CTables& rTables) {
    rPage << "## " << pTitle << "\n\n```mermaid\nstateDiagram-v2\n";
    for (const Sequence::CState& rState : rTables.m_States) {
        rPage << "    s" << rState.m_State << " : " << rState.m_State << " " << rState.m_pName << "\n";
    }
    rPage << "    [*] --> s0\n";
    // Parallel ways share an arrow, in the order of the table.
    std::vector<std::pair<int, int>> Order;
    std::map<std::pair<int, int>, std::string> Labels;
    for (const Sequence::CTransition& rRow : rTables.m_Transitions) {
        std::string& rLabel = Labels[{rRow.m_From, rRow.m_To}];
        if (rLabel.empty()) {
            Order.emplace_back(rRow.m_From, rRow.m_To);
        } else {
            rLabel += "<br>";
        }
        rLabel += Describe(rRow);
    }
    for (const std::pair<int, int>& rWay : Order) {
        rPage << "    s" << rWay.first << " --> s" << rWay.second << " : " << Labels[rWay] << "\n";
    }
    rPage << "```\n";
}

}  // namespace

std::string MakeStateMachinesPage() {
    std::ostringstream Page;
    Page
        << "# The state machines of the procedures\n\n"
           "Made from [singleplanetables.h](../rvdlm/m_rtr/rtr_trim/prebalancing/singleplanetables.h) and\n"
           "[twoplanetables.h](../rvdlm/m_rtr/rtr_trim/prebalancing/twoplanetables.h) by\n"
           "`build/release/bin/statediagram >docs/state-machines.md`; a test holds it against the tables.\n\n"
           "An arrow says: what comes [what must hold besides] / what is done before the next state is "
           "entered. Besides, "
           "the host\nmay end every state in state 1, and a calculation that can't be made in state 2; "
           "nothing follows "
           "those two.\n\n";
    Append(Page, "One plane", SinglePlane::TABLES);
    Page << "\n";
    Append(Page, "Two coupled planes", TwoPlane::TABLES);
    return Page.str();
}

#include "platform/qt/helppages.h"

#include <QCollator>
#include <QLocale>
#include <QRegularExpression>
#include <QStringList>
#include <QTextDocumentFragment>
#include <algorithm>
#include <vector>

#include "platform/help/sitemap.h"
#include "platform/rvldb/gettext.h"

namespace HelpPages {

namespace {

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

QString MakePage(const QString& rTitle, const QString& rBody) {
    const QString Heading = rTitle.isEmpty() ? QString() : "<h1>" + rTitle.toHtmlEscaped() + "</h1>";
    return R"(<html><head><link rel="stylesheet" type="text/css" href="chm:/style.css"></head><body>)" +
           Heading + rBody + "</body></html>";
}

QString MakeLink(const QString& rPage, const QString& rText) {
    return R"(<a href="chm:/)" + rPage.toHtmlEscaped() + "\">" + rText.toHtmlEscaped() + "</a>";
}

std::vector<SiteMap::CEntry> GetEntries(const CCompiledHelp& rHelp, const char* pEnding) {
    const std::string* const pFile = rHelp.FindByEnding(pEnding);
    return pFile == nullptr ? std::vector<SiteMap::CEntry>() : SiteMap::Parse(*pFile);
}

QString MakeEntry(const SiteMap::CEntry& rEntry) {
    const QString Name = QString::fromStdString(rEntry.m_Name);
    return rEntry.m_Page.empty() ? "<b>" + Name.toHtmlEscaped() + "</b>"
                                 : MakeLink(QString::fromStdString(rEntry.m_Page), Name);
}

/// In which two spellings of a word are the same text: "Größe", "GRÖSSE", and either with the umlaut as two
/// characters.
QString Fold(const QString& rText) {
    return rText.normalized(QString::NormalizationForm_C).toCaseFolded().replace(QChar(0xDF), "ss");
}

struct CFound {
    QString m_Page;
    QString m_Title;
    QString m_Excerpt;
    bool m_bInTitle = false;
};

QString GetTitle(const QString& rHtml, const QString& rPage) {
    static const QRegularExpression s_Title(
        "<title>(.*?)</title>",
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QString Title =
        QTextDocumentFragment::fromHtml(s_Title.match(rHtml).captured(1)).toPlainText().simplified();
    return Title.isEmpty() ? rPage : Title;
}

/// The words around the place where the first one stands.
QString GetExcerpt(const QString& rText, const QString& rWord) {
    constexpr qsizetype BEFORE = 40;
    constexpr qsizetype LENGTH = 120;
    const qsizetype nFound = std::max<qsizetype>(rText.indexOf(rWord, 0, Qt::CaseInsensitive), 0);
    qsizetype nBegin = nFound <= BEFORE ? 0 : rText.lastIndexOf(' ', nFound - BEFORE) + 1;
    return (nBegin > 0 ? "… " : "") + rText.mid(nBegin, LENGTH).trimmed() +
           (nBegin + LENGTH < rText.size() ? " …" : "");
}

}  // namespace

QString MakeContents(const CCompiledHelp& rHelp) {
    QString Body;
    int nDepth = -1;
    for (const SiteMap::CEntry& rEntry : GetEntries(rHelp, ".hhc")) {
        for (; nDepth < rEntry.m_nDepth; ++nDepth) {
            Body += "<ul>";
        }
        for (; nDepth > rEntry.m_nDepth; --nDepth) {
            Body += "</ul>";
        }
        Body += "<li>" + MakeEntry(rEntry) + "</li>";
    }
    return MakePage(Text("HELP_CONTENTS"), Body);
}

QString MakeIndex(const CCompiledHelp& rHelp) {
    std::vector<SiteMap::CEntry> Entries = GetEntries(rHelp, ".hhk");
    // By the help's language, whatever the system's: umlauts stand with their vowels.
    const QCollator Order(QLocale(Text("ONLINE_HELP_PREFIX")));
    std::ranges::stable_sort(Entries, [&Order](const SiteMap::CEntry& rLeft, const SiteMap::CEntry& rRight) {
        return Order.compare(QString::fromStdString(rLeft.m_Name), QString::fromStdString(rRight.m_Name)) < 0;
    });
    QString Body;
    for (const SiteMap::CEntry& rEntry : Entries) {
        Body += "<p class=\"entry\">" + MakeEntry(rEntry) + "</p>";
    }
    return MakePage(Text("HELP_INDEX"), Body);
}

QString MakeLine(const QString& rLine) {
    return MakePage({}, "<p>" + rLine.toHtmlEscaped() + "</p>");
}

QString MakeFound(const CCompiledHelp& rHelp, const QString& rWords) {
    const QStringList Words = rWords.split(QRegularExpression("\\s+"), Qt::SkipEmptyParts);
    std::vector<CFound> Found;
    for (const std::string& rPage : rHelp.GetPages()) {
        const QString Page = QString::fromStdString(rPage);
        const QString Html = QString::fromStdString(*rHelp.Find(rPage));
        const QString Title = GetTitle(Html, Page);
        const QString Plain = QTextDocumentFragment::fromHtml(Html).toPlainText().simplified();
        const QString FoldedTitle = Fold(Title);
        const QString FoldedText = FoldedTitle + " " + Fold(Plain);
        const auto HasAll = [&Words](const QString& rText) {
            return std::ranges::all_of(Words,
                                       [&](const QString& rWord) { return rText.contains(Fold(rWord)); });
        };
        if (!Words.isEmpty() && HasAll(FoldedText)) {
            Found.push_back({Page, Title, GetExcerpt(Plain, Words.front()), HasAll(FoldedTitle)});
        }
    }
    std::stable_partition(Found.begin(), Found.end(), [](const CFound& rFound) { return rFound.m_bInTitle; });
    QString Body;
    for (const CFound& rFound : Found) {
        Body += "<p class=\"entry\">" + MakeLink(rFound.m_Page, rFound.m_Title) + "<br>" +
                rFound.m_Excerpt.toHtmlEscaped() + "</p>";
    }
    if (Found.empty()) {
        Body = "<p>" + Text("HELP_NOT_FOUND").arg(rWords).toHtmlEscaped() + "</p>";
    }
    return MakePage(Text("HELP_SEARCH") + ": " + rWords, Body);
}

}  // namespace HelpPages

#include "platform/qt/helppanel.h"

#include <QApplication>
#include <QBuffer>
#include <QEvent>
#include <QHBoxLayout>
#include <QImageReader>
#include <QInputDevice>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <array>
#include <utility>

#include "platform/help/helpshelf.h"
#include "platform/qt/helppages.h"
#include "platform/rvldb/gettext.h"

namespace {

// A page of the file is "chm:/page", one that is made of it "help:kind".
constexpr const char* FILE_SCHEME = "chm";
constexpr const char* MADE_SCHEME = "help";
constexpr const char* CONTENTS = "contents";
constexpr const char* INDEX = "index";
const QString FOUND = "found/";  // and the words

/// To be hit by a finger.
constexpr int BUTTON_HEIGHT = 32;
/// Most pixels of a picture, each way: a damaged one may name any.
constexpr int MOST_PIXELS = 4000;

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

QString GetPath(const QUrl& rUrl) {
    return rUrl.path(QUrl::FullyDecoded);
}

QUrl MakeUrl(const char* pScheme, const QString& rPath) {
    QUrl Url;
    Url.setScheme(pScheme);
    Url.setPath(rPath, QUrl::DecodedMode);
    return Url;
}

/// Touches come as mouse events.
bool IsByFinger(const QMouseEvent& rEvent) {
    return rEvent.deviceType() == QInputDevice::DeviceType::TouchScreen;
}

QImage GetEmptyPicture() {
    QImage Picture(1, 1, QImage::Format_ARGB32_Premultiplied);
    Picture.fill(Qt::transparent);
    return Picture;
}

}  // namespace

// --- the page

CHelpPanel::CPage::CPage(CHelpPanel& rPanel) : QTextBrowser(&rPanel), m_rPanel(rPanel) {
    setOpenLinks(false);
    setFocusPolicy(Qt::ClickFocus);  // the Tab key goes by the panel
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    document()->setDocumentMargin(8);
    // A finger that rests on the text is no wish for a menu.
    setContextMenuPolicy(Qt::NoContextMenu);
}

void CHelpPanel::CPage::Show(const QUrl& rSource) {
    m_bHasPictures = false;
    const bool bSame = source() == rSource;
    setSource(rSource);
    if (bSame) {
        reload();
        if (rSource.hasFragment()) {
            scrollToAnchor(rSource.fragment());
        } else {
            verticalScrollBar()->setValue(0);
        }
    }
    clearHistory();  // the panel has one of its own, which doesn't grow
}

QVariant CHelpPanel::CPage::loadResource(int Type, const QUrl& rName) {
    if (rName.scheme() == MADE_SCHEME && Type == QTextDocument::HtmlResource) {
        return m_rPanel.Make(rName);
    }
    // Nothing else, so that no page reads a file of the machine. The toolkit would look there by itself for
    // what is not there: it gets something that is empty.
    const bool bPicture = Type == QTextDocument::ImageResource;
    const std::string* const pContents =
        rName.scheme() == FILE_SCHEME ? m_rPanel.m_pHelp->Find(GetPath(rName).toStdString()) : nullptr;
    if (pContents == nullptr) {
        return bPicture ? QVariant(GetEmptyPicture()) : QVariant(QByteArray(""));
    }
    return bPicture ? LoadPicture(*pContents) : QVariant(QByteArray::fromStdString(*pContents));
}

QVariant CHelpPanel::CPage::LoadPicture(const std::string& rContents) {
    m_bHasPictures = true;
    m_nPictureWidth = viewport()->width();
    QByteArray Bytes = QByteArray::fromStdString(rContents);
    QBuffer Buffer(&Bytes);
    QImageReader Reader(&Buffer);
    const QSize Size = Reader.size();
    if (!Size.isValid() || Size.width() > MOST_PIXELS || Size.height() > MOST_PIXELS) {
        return GetEmptyPicture();
    }
    const int nRoom = qMax(m_nPictureWidth - 2 * static_cast<int>(document()->documentMargin()), 1);
    const QImage Picture = Reader.read();
    if (Picture.isNull()) {
        return GetEmptyPicture();
    }
    return Picture.width() <= nRoom ? Picture : Picture.scaledToWidth(nRoom, Qt::SmoothTransformation);
}

void CHelpPanel::CPage::resizeEvent(QResizeEvent* pEvent) {
    QTextBrowser::resizeEvent(pEvent);
    // Pictures go with the pane's width.
    if (m_bHasPictures && m_nPictureWidth != viewport()->width()) {
        const int nScrolled = verticalScrollBar()->value();
        reload();
        verticalScrollBar()->setValue(nScrolled);
    }
}

void CHelpPanel::CPage::mousePressEvent(QMouseEvent* pEvent) {
    m_bScrolling = false;
    m_nPressedAt = qRound(pEvent->position().y());
    m_nScrolledThen = verticalScrollBar()->value();
    QTextBrowser::mousePressEvent(pEvent);
}

void CHelpPanel::CPage::mouseMoveEvent(QMouseEvent* pEvent) {
    if (!IsByFinger(*pEvent)) {
        QTextBrowser::mouseMoveEvent(pEvent);
        return;
    }
    const int nMoved = qRound(pEvent->position().y()) - m_nPressedAt;
    m_bScrolling = m_bScrolling || qAbs(nMoved) >= QApplication::startDragDistance();
    if (m_bScrolling) {
        verticalScrollBar()->setValue(m_nScrolledThen - nMoved);
    }
}

void CHelpPanel::CPage::mouseReleaseEvent(QMouseEvent* pEvent) {
    // The end of a way is no tap on a link.
    if (!std::exchange(m_bScrolling, false)) {
        QTextBrowser::mouseReleaseEvent(pEvent);
    }
}

// --- the panel

CHelpPanel::CHelpPanel(QWidget* pParent) : QWidget(pParent), m_pHelp(std::make_shared<CCompiledHelp>()) {
    auto* const pColumn = new QVBoxLayout(this);
    pColumn->setContentsMargins(0, 0, 0, 0);
    pColumn->setSpacing(0);
    auto* const pRow = new QHBoxLayout();
    pRow->setContentsMargins(2, 2, 2, 2);
    pRow->setSpacing(2);
    m_pBack = MakeButton();
    m_pBack->setArrowType(Qt::LeftArrow);
    m_pContents = MakeButton();
    m_pIndex = MakeButton();
    m_pSearch = new QLineEdit(this);
    m_pSearch->setMinimumHeight(BUTTON_HEIGHT);
    m_pSearch->setMinimumWidth(60);
    m_pSearch->setClearButtonEnabled(true);
    m_pSearch->setFocusPolicy(Qt::ClickFocus);
    for (QWidget* const pWidget : std::array<QWidget*, 3>{m_pBack, m_pContents, m_pIndex}) {
        pRow->addWidget(pWidget);
    }
    pRow->addWidget(m_pSearch, 1);
    pColumn->addLayout(pRow);
    m_pPage = new CPage(*this);
    pColumn->addWidget(m_pPage, 1);
    setFocusPolicy(Qt::ClickFocus);
    setFocusProxy(m_pPage);
    connect(m_pBack, &QToolButton::clicked, this, [this] { GoBack(); });
    connect(m_pContents, &QToolButton::clicked, this, [this] { GoByOperator(GetContentsUrl()); });
    connect(m_pIndex, &QToolButton::clicked, this, [this] { GoByOperator(MakeUrl(MADE_SCHEME, INDEX)); });
    connect(m_pSearch, &QLineEdit::returnPressed, this, [this] {
        if (!m_pSearch->text().trimmed().isEmpty()) {
            GoByOperator(MakeUrl(MADE_SCHEME, FOUND + m_pSearch->text().trimmed()));
        }
    });
    connect(m_pPage, &QTextBrowser::anchorClicked, this, [this](const QUrl& rLink) { OnLink(rLink); });
    SetTexts();
}

QToolButton* CHelpPanel::MakeButton() {
    auto* const pButton = new QToolButton(this);
    pButton->setMinimumSize(BUTTON_HEIGHT, BUTTON_HEIGHT);
    pButton->setAutoRaise(true);
    pButton->setFocusPolicy(Qt::NoFocus);
    return pButton;
}

QUrl CHelpPanel::GetContentsUrl() {
    return MakeUrl(MADE_SCHEME, CONTENTS);
}

void CHelpPanel::SetTexts() {
    m_pBack->setAccessibleName(Text("HELP_BACK"));
    m_pContents->setText(Text("HELP_CONTENTS"));
    m_pIndex->setText(Text("HELP_INDEX"));
    m_pSearch->setPlaceholderText(Text("HELP_SEARCH"));
    m_pSearch->setAccessibleName(Text("HELP_SEARCH"));
    m_pPage->setAccessibleName(Text("HELP_PAGE"));
    m_pBack->setEnabled(!m_Places.empty());
}

void CHelpPanel::ShowAddress(const std::string& rUrl) {
    m_Url = rUrl;
    const std::optional<CHelpAddress> Address = CHelpAddress::Parse(rUrl);
    m_bAddress = Address.has_value();
    m_Address = Address.value_or(CHelpAddress());
    m_pHelp = m_bAddress ? HelpShelf::Take(m_Address.m_File) : std::make_shared<const CCompiledHelp>();
    QUrl Source;
    if (m_bAddress && m_Address.m_Page.empty()) {
        Source = GetContentsUrl();
    } else if (!rUrl.empty()) {
        Source = MakeUrl(FILE_SCHEME, "/" + QString::fromStdString(m_Address.m_Page));
        if (!m_Address.m_Anchor.empty()) {
            Source.setFragment(QString::fromStdString(m_Address.m_Anchor));
        }
    }
    Go(Source);
}

void CHelpPanel::Go(const QUrl& rSource) {
    if (!m_Source.isEmpty() && m_Source != rSource) {
        m_Places.push_back({m_Source, m_pPage->verticalScrollBar()->value()});
        if (m_Places.size() > MOST_PLACES) {
            m_Places.pop_front();
        }
    }
    Show(rSource);
}

void CHelpPanel::GoByOperator(const QUrl& rSource) {
    Go(rSource);
    OnMovedByOperator();
}

void CHelpPanel::GoBack() {
    if (m_Places.empty()) {
        return;
    }
    const CPlace Place = m_Places.back();
    m_Places.pop_back();
    Show(Place.m_Source);
    m_pPage->verticalScrollBar()->setValue(Place.m_nScrolled);
    OnMovedByOperator();
}

void CHelpPanel::OnLink(const QUrl& rLink) {
    // A page links to pages of its own file; whatever else stands there leads nowhere.
    const QUrl Target = m_Source.scheme() == FILE_SCHEME ? m_Source.resolved(rLink) : rLink;
    GoByOperator(Target.scheme() == FILE_SCHEME ? Target : MakeUrl(FILE_SCHEME, "/" + rLink.toString()));
}

void CHelpPanel::Show(const QUrl& rSource) {
    m_Source = rSource;
    if (rSource.scheme() == FILE_SCHEME && m_bAddress) {
        m_Address.m_Page = GetPath(rSource).mid(1).toStdString();
        m_Address.m_Anchor = rSource.fragment().toStdString();
        m_Url = m_Address.MakeUrl();
    }
    const bool bOfTheFile = rSource.scheme() == FILE_SCHEME;
    const bool bThere = bOfTheFile && m_pHelp->Find(GetPath(rSource).toStdString()) != nullptr;
    if (rSource.isEmpty()) {
        m_pPage->clear();
    } else if (bOfTheFile && !bThere) {
        m_pPage->Show(MakeUrl(MADE_SCHEME, GetPath(rSource)));
    } else {
        m_pPage->Show(rSource);
    }
    SetTexts();
}

QString CHelpPanel::Make(const QUrl& rSource) const {
    const QString Kind = GetPath(rSource);
    const bool bRead = m_pHelp->GetState() == CCompiledHelp::State::eRead;
    if (bRead && Kind == CONTENTS) {
        return HelpPages::MakeContents(*m_pHelp);
    }
    if (bRead && Kind == INDEX) {
        return HelpPages::MakeIndex(*m_pHelp);
    }
    if (bRead && Kind.startsWith(FOUND)) {
        return HelpPages::MakeFound(*m_pHelp, Kind.mid(FOUND.size()));
    }
    return HelpPages::MakeLine(GetMissing(Kind.mid(1)));
}

QString CHelpPanel::GetMissing(const QString& rPage) const {
    if (!m_bAddress) {
        return Text("HELP_NO_ADDRESS").arg(QString::fromStdString(m_Url));
    }
    const QString File = QString::fromStdString(m_Address.GetFileName());
    const QString Directory = QString::fromStdString(m_Address.GetDirectory());
    switch (m_pHelp->GetState()) {
        case CCompiledHelp::State::eMissing:
            return Text("HELP_NO_FILE").arg(File, Directory);
        case CCompiledHelp::State::eDamaged:
            return Text("HELP_DAMAGED").arg(File, Directory);
        case CCompiledHelp::State::eRead:
            break;
    }
    return Text("HELP_NO_PAGE").arg(rPage, File, Directory);
}

QString CHelpPanel::GetPlainText() const {
    return m_pPage->toPlainText();
}

bool CHelpPanel::focusNextPrevChild(bool bNext) {
    // The text comes first when the focus gets here; what stands above it is behind it, backwards.
    const std::array<QWidget*, 5> Stops = {m_pBack, m_pContents, m_pIndex, m_pSearch, m_pPage};
    const QWidget* const pFocus = focusWidget();
    for (std::size_t i = 0; i < Stops.size(); ++i) {
        if (Stops[i] != pFocus) {
            continue;
        }
        for (std::size_t Next = bNext ? i + 1 : i - 1; Next < Stops.size();
             Next = bNext ? Next + 1 : Next - 1) {
            if (Stops[Next]->isEnabled()) {
                Stops[Next]->setFocus(bNext ? Qt::TabFocusReason : Qt::BacktabFocusReason);
                return true;
            }
        }
    }
    return QWidget::focusNextPrevChild(bNext);
}

void CHelpPanel::changeEvent(QEvent* pEvent) {
    QWidget::changeEvent(pEvent);
    if (pEvent->type() == QEvent::LanguageChange) {
        SetTexts();
    }
}

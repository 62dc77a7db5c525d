#pragma once
#include <QTextBrowser>
#include <QUrl>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "platform/help/compiledhelp.h"
#include "platform/help/helpaddress.h"

class QLineEdit;
class QToolButton;

/// Shows a page of a compiled help; a line instead if the file or the page is missing. Above it: back,
/// contents, index, search. Nothing is loaded from anywhere but the compiled file.
class CHelpPanel : public QWidget {
public:
    explicit CHelpPanel(QWidget* pParent = nullptr);

    /// An address as in platform/help/helpaddress.h. Empty: an empty page.
    void ShowAddress(const std::string& rUrl);
    /// The address of the page shown, also after the operator went there; that of the last one for contents,
    /// index and findings.
    const std::string& GetAddress() const { return m_Url; }
    /// The page shown, as text.
    QString GetPlainText() const;

protected:
    /// The operator has gone to another page.
    virtual void OnMovedByOperator() {}
    bool focusNextPrevChild(bool bNext) override;
    void changeEvent(QEvent* pEvent) override;

private:
    /// The page itself.
    class CPage : public QTextBrowser {
    public:
        explicit CPage(CHelpPanel& rPanel);
        QVariant loadResource(int Type, const QUrl& rName) override;
        /// Its own keys for it lead through the panel's history.
        void backward() override { m_rPanel.GoBack(); }
        void home() override { m_rPanel.GoByOperator(GetContentsUrl()); }
        /// Shows what is at rSource, anew if it is shown already.
        void Show(const QUrl& rSource);

    protected:
        void resizeEvent(QResizeEvent* pEvent) override;
        // A finger scrolls where the mouse marks text.
        void mousePressEvent(QMouseEvent* pEvent) override;
        void mouseMoveEvent(QMouseEvent* pEvent) override;
        void mouseReleaseEvent(QMouseEvent* pEvent) override;

    private:
        QVariant LoadPicture(const std::string& rContents);

        CHelpPanel& m_rPanel;
        bool m_bHasPictures = false;
        int m_nPictureWidth = 0;  ///< the width that they were fitted to
        bool m_bScrolling = false;
        int m_nPressedAt = 0;
        int m_nScrolledThen = 0;
    };
    struct CPlace {
        QUrl m_Source;
        int m_nScrolled = 0;
    };
    static constexpr std::size_t MOST_PLACES = 50;

    static QUrl GetContentsUrl();
    void SetTexts();
    QToolButton* MakeButton();
    /// To a page of the present file, or one that is made of it.
    void Go(const QUrl& rSource);
    void GoByOperator(const QUrl& rSource);
    void GoBack();
    void OnLink(const QUrl& rLink);
    void Show(const QUrl& rSource);
    /// HTML of a page that is made here; empty if rSource isn't one.
    QString Make(const QUrl& rSource) const;
    /// What is missing of the present address, as a line for the operator.
    QString GetMissing(const QString& rPage) const;

    QToolButton* m_pBack = nullptr;
    QToolButton* m_pContents = nullptr;
    QToolButton* m_pIndex = nullptr;
    QLineEdit* m_pSearch = nullptr;
    CPage* m_pPage = nullptr;
    std::string m_Url;
    CHelpAddress m_Address;
    bool m_bAddress = false;  ///< m_Url was one
    std::shared_ptr<const CCompiledHelp> m_pHelp;
    QUrl m_Source;
    std::deque<CPlace> m_Places;  ///< where it was before, the last one at the end
};

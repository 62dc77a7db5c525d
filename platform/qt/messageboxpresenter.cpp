#include "platform/qt/messageboxpresenter.h"

#include <QMessageBox>

#include "platform/window/messagebox.h"

CMessageBoxPresenter::CMessageBoxPresenter(QWidget* pParent) : m_pParent(pParent) {
    SetMessageBoxPresenter([this](const CShownMessage& rMessage) { Present(rMessage); });
}

CMessageBoxPresenter::~CMessageBoxPresenter() {
    SetMessageBoxPresenter(nullptr);
}

void CMessageBoxPresenter::Present(const CShownMessage& rMessage) {
    // Closing it ends it.
    auto* pBox = new QMessageBox(QMessageBox::Warning, QString::fromStdString(rMessage.m_Title),
                                 QString::fromStdString(rMessage.m_Text), QMessageBox::Ok, m_pParent);
    pBox->setAttribute(Qt::WA_DeleteOnClose);
    pBox->setModal(false);
    pBox->show();
}

#include "platform/qt/listen.h"

#include <QHostAddress>
#include <QHostInfo>
#include <QString>
#include <QTcpServer>

#include "platform/rvcom/endpoint.h"

std::string ListenAt(QTcpServer& rServer, const CEndpoint& rEndpoint) {
    QHostAddress Address;
    const QString Host = QString::fromStdString(rEndpoint.m_Host);
    if (!Address.setAddress(Host)) {
        const QHostInfo Info = QHostInfo::fromName(Host);
        if (Info.addresses().isEmpty()) {
            return "\"" + rEndpoint.m_Host + "\" isn't known: " + Info.errorString().toStdString() +
                   "; give an address of this machine, for example 127.0.0.1";
        }
        Address = Info.addresses().first();
    }
    if (!rServer.listen(Address, rEndpoint.m_Port)) {
        return rServer.errorString().toStdString() + "; give an address of this machine and a free port";
    }
    return {};
}

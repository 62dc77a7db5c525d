#include <QSerialPort>
#include <QString>
#include <utility>

#include "platform/rvcom/linkkinds.h"
#include "platform/rvcom/queuedlink.h"

namespace {

/// A serial port with 8 data bits, no parity, 1 stop bit. Handshake lines are left alone: pseudo terminals
/// have none, and the modules use none.
class CSerialLink : public CQueuedLink {
public:
    CSerialLink(std::string Path, std::uint32_t Baud) : m_Path(std::move(Path)), m_Baud(Baud) {
        QObject::connect(&m_Port, &QSerialPort::readyRead, [this] { ReadAll(); });
        QObject::connect(&m_Port, &QSerialPort::errorOccurred,
                         [this](QSerialPort::SerialPortError Error) { OnError(Error); });
    }
    ~CSerialLink() override { m_Port.disconnect(); }

    void Open() override {
        Close();
        m_Port.setPortName(QString::fromStdString(m_Path));
        m_Port.setBaudRate(static_cast<qint32>(m_Baud));
        m_Port.setDataBits(QSerialPort::Data8);
        m_Port.setParity(QSerialPort::NoParity);
        m_Port.setStopBits(QSerialPort::OneStop);
        m_Port.setFlowControl(QSerialPort::NoFlowControl);
        if (m_Port.open(QIODevice::ReadWrite)) {
            m_bRunning = true;
            PostOpened();
        } else {
            PostClosed(
                m_Port.errorString().toStdString() +
                "; is the path right, the device plugged in, not in use by another program, and is the user "
                "allowed to use it (group dialout)?");
        }
    }
    void Close() override {
        m_bRunning = false;
        if (m_Port.isOpen()) {
            m_Port.close();
        }
        Restart();
    }
    bool Write(std::span<const std::uint8_t> Bytes) override {
        const auto nSize = static_cast<qint64>(Bytes.size());
        return IsOpen() && m_bRunning &&
               m_Port.write(reinterpret_cast<const char*>(Bytes.data()), nSize) == nSize;
    }
    std::string GetName() const override { return "serial:" + m_Path + ":" + std::to_string(m_Baud); }

private:
    void ReadAll() {
        const QByteArray Bytes = m_Port.readAll();
        PostBytes({Bytes.begin(), Bytes.end()});
    }
    void OnError(QSerialPort::SerialPortError Error) {
        // Errors of opening are told by Open(); a device without some feature still carries bytes.
        if (!m_bRunning || Error == QSerialPort::NoError || Error == QSerialPort::UnsupportedOperationError) {
            return;
        }
        m_bRunning = false;
        const std::string Reason = m_Port.errorString().toStdString();
        ReadAll();
        // A port that has gone reports its error without end unless it is closed here.
        m_Port.close();
        PostClosed(Reason);
    }

    std::string m_Path;
    std::uint32_t m_Baud;
    bool m_bRunning = false;  ///< opened, and no error since
    QSerialPort m_Port;
};

}  // namespace

std::unique_ptr<IFByteLink> MakeSerialLink(const std::string& rPath, std::uint32_t Baud) {
    return std::make_unique<CSerialLink>(rPath, Baud);
}

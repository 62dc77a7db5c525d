#include "platform/rvmdb/sqldriver.h"

#include <fcntl.h>

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QVariant>
#include <atomic>
#include <string_view>

#include "platform/system/descriptor.h"

namespace PreBalDB {

namespace {

QVariant ToVariant(const CSqlValue& rValue) {
    if (const auto* pInteger = std::get_if<std::int64_t>(&rValue)) {
        return QVariant(static_cast<qlonglong>(*pInteger));
    }
    if (const auto* pDouble = std::get_if<double>(&rValue)) {
        return QVariant(*pDouble);
    }
    // Not a null string even if it is empty: that would be stored as NULL.
    return QVariant(QString::fromStdString(std::get<std::string>(rValue)) + QLatin1String(""));
}

CSqlValue FromVariant(const QVariant& rValue) {
    switch (rValue.typeId()) {
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
            return static_cast<std::int64_t>(rValue.toLongLong());
        case QMetaType::Double:
            return rValue.toDouble();
        default:
            return rValue.toString().toStdString();
    }
}

CSqlDriverError MakeError(const QSqlError& rError) {
    const QString Text = rError.databaseText().isEmpty() ? rError.driverText() : rError.databaseText();
    return CSqlDriverError(Text.simplified().toStdString(), rError.nativeErrorCode().toStdString());
}

class CSqlDriver : public IFSqlDriver {
public:
    CSqlDriver(const char* pDriver, const char* pPackage) {
        if (!QSqlDatabase::isDriverAvailable(QLatin1String(pDriver))) {
            throw CSqlDriverError(std::string("the driver ") + pDriver + " is missing; install the package " +
                                  pPackage);
        }
        // Qt knows connections by name; two of the same name would take each other's place.
        static std::atomic<std::uint64_t> ms_nConnections{0};
        m_Name = QStringLiteral("rvMDB-%1").arg(++ms_nConnections);
        m_Database = QSqlDatabase::addDatabase(QLatin1String(pDriver), m_Name);
    }
    ~CSqlDriver() override {
        m_Database.close();
        // The handle must be gone before its name is.
        m_Database = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_Name);
    }
    CSqlDriver(const CSqlDriver&) = delete;
    CSqlDriver& operator=(const CSqlDriver&) = delete;

    QSqlDatabase& GetDatabase() { return m_Database; }

    void Open() override {
        if (!m_Database.open()) {
            throw MakeError(m_Database.lastError());
        }
    }
    void Close() override { m_Database.close(); }
    int Execute(const std::string& rStatement, const std::vector<CSqlValue>& rValues) override {
        return Run(rStatement, rValues).numRowsAffected();
    }
    std::vector<std::vector<CSqlValue>> Query(const std::string& rStatement,
                                              const std::vector<CSqlValue>& rValues) override {
        QSqlQuery Result = Run(rStatement, rValues);
        const int nColumns = Result.record().count();
        std::vector<std::vector<CSqlValue>> Rows;
        while (Result.next()) {
            std::vector<CSqlValue>& rRow = Rows.emplace_back();
            for (int i = 0; i < nColumns; ++i) {
                rRow.push_back(FromVariant(Result.value(i)));
            }
        }
        // A damaged page or a broken connection ends the rows early.
        if (Result.lastError().isValid()) {
            throw MakeError(Result.lastError());
        }
        return Rows;
    }
    std::vector<std::string> GetTables() const override {
        std::vector<std::string> Tables;
        for (const QString& rTable : m_Database.tables()) {
            Tables.push_back(rTable.toStdString());
        }
        return Tables;
    }
    const void* GetServerHandle() const override {
        const QVariant Connection = m_Database.driver()->handle();
        // By the name that the client library gives its type, or by that of the type behind it: which of them
        // is up to the toolkit's version.
        const std::string_view Type = Connection.isValid() ? Connection.typeName() : "";
        return Type == "PGconn*" || Type == "pg_conn*" ? *static_cast<void* const*>(Connection.constData())
                                                       : nullptr;
    }

private:
    QSqlQuery Run(const std::string& rStatement, const std::vector<CSqlValue>& rValues) const {
        QSqlQuery Query(m_Database);
        Query.setForwardOnly(true);
        const QString Statement = QString::fromStdString(rStatement);
        bool bDone = false;
        if (rValues.empty()) {
            bDone = Query.exec(Statement);
        } else if (Query.prepare(Statement)) {
            for (const CSqlValue& rValue : rValues) {
                Query.addBindValue(ToVariant(rValue));
            }
            bDone = Query.exec();
        }
        if (!bDone) {
            throw MakeError(Query.lastError());
        }
        return Query;
    }

    QString m_Name;
    QSqlDatabase m_Database;
};

}  // namespace

std::unique_ptr<IFSqlDriver> MakeSqliteDriver(const std::string& rPath, int BusyTimeout) {
    auto pDriver = std::make_unique<CSqlDriver>("QSQLITE", "libqt6sql6-sqlite");
    // A new one is the group's, too, as all files are; SQLite wouldn't have it so. Its journals follow the
    // file.
    constexpr mode_t MODE = 0660;
    const CDescriptor New(::open(rPath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, MODE));
    pDriver->GetDatabase().setDatabaseName(QString::fromStdString(rPath));
    pDriver->GetDatabase().setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(BusyTimeout));
    return pDriver;
}

std::unique_ptr<IFSqlDriver> MakePostgresDriver(const CPostgresUrl& rUrl) {
    auto pDriver = std::make_unique<CSqlDriver>("QPSQL", "libqt6sql6-psql");
    QSqlDatabase& rDatabase = pDriver->GetDatabase();
    rDatabase.setHostName(QString::fromStdString(rUrl.m_Host));
    rDatabase.setPort(rUrl.m_Port);
    rDatabase.setUserName(QString::fromStdString(rUrl.m_User));
    rDatabase.setPassword(QString::fromStdString(rUrl.m_Password));
    rDatabase.setDatabaseName(QString::fromStdString(rUrl.m_Database));
    rDatabase.setConnectOptions(QString::fromStdString(rUrl.m_Options));
    return pDriver;
}

}  // namespace PreBalDB

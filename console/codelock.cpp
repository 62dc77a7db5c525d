#include "console/codelock.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QFile>
#include <QPasswordDigestor>
#include <QRandomGenerator>
#include <QSaveFile>
#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/system/eventloop.h"

namespace {

using nlohmann::json;

constexpr std::uint32_t ITERATIONS = 60000;
constexpr std::uint32_t MOST_ITERATIONS = 10000000;  ///< a file that says more is no file of ours
constexpr int HASH_BYTES = 32;
constexpr int SALT_WORDS = 4;
constexpr std::uint64_t FIRST_PAUSE = 1000;  ///< ms
constexpr std::uint64_t LONGEST_PAUSE = 900000;

std::string Hash(const std::string& rCode, const std::string& rSalt, std::uint32_t nIterations) {
    return QPasswordDigestor::deriveKeyPbkdf2(QCryptographicHash::Sha256, QByteArray::fromStdString(rCode),
                                              QByteArray::fromHex(QByteArray::fromStdString(rSalt)),
                                              static_cast<int>(nIterations), HASH_BYTES)
        .toHex()
        .toStdString();
}

std::string MakeSalt() {
    QByteArray Salt;
    for (int i = 0; i < SALT_WORDS; ++i) {
        Salt += QByteArray::number(QRandomGenerator::system()->generate(), 16).rightJustified(8, '0');
    }
    return Salt.toStdString();
}

}  // namespace

CCodeLock::CCodeLock(std::string File) : m_File(std::move(File)) {
    Read();
    BeginPause();
}

void CCodeLock::Read() {
    QFile File(QString::fromStdString(m_File));
    if (!File.exists()) {
        return;
    }
    m_State = State::eDamaged;
    if (!File.open(QIODevice::ReadOnly)) {
        return;
    }
    const json Stored = json::parse(File.readAll().toStdString(), nullptr, false);
    try {
        m_Salt = Stored.at("salt").get<std::string>();
        m_Hash = Stored.at("hash").get<std::string>();
        m_nIterations = Stored.at("iterations").get<std::uint32_t>();
        m_nFailures = Stored.at("failures").get<std::uint32_t>();
    } catch (const json::exception&) {
        return;
    }
    if (m_Hash.size() == static_cast<std::size_t>(HASH_BYTES) * 2 && m_nIterations > 0 &&
        m_nIterations <= MOST_ITERATIONS) {
        m_State = State::eCode;
    }
}

bool CCodeLock::Write(const std::string& rSalt, const std::string& rHash, std::uint32_t nIterations,
                      std::uint32_t nFailures) const {
    const std::string Text =
        json{{"salt", rSalt}, {"hash", rHash}, {"iterations", nIterations}, {"failures", nFailures}}.dump();
    QSaveFile File(QString::fromStdString(m_File));
    return File.open(QIODevice::WriteOnly) &&
           File.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
           File.write(QByteArray::fromStdString(Text)) == static_cast<qint64>(Text.size()) && File.commit();
}

void CCodeLock::BeginPause() {
    if (m_nFailures > 0) {
        const std::uint32_t nDoublings = std::min(m_nFailures - 1, 20U);
        m_NotBefore = IFEventLoop::Current().Now() + std::min(FIRST_PAUSE << nDoublings, LONGEST_PAUSE);
    }
}

std::uint64_t CCodeLock::GetPause() const {
    const std::uint64_t Now = IFEventLoop::Current().Now();
    return m_NotBefore > Now ? m_NotBefore - Now : 0;
}

CCodeLock::Outcome CCodeLock::Open(const std::string& rCode) {
    if (!HasCode()) {
        return Outcome::eOpen;
    }
    if (GetPause() > 0) {
        return Outcome::eTooSoon;
    }
    if (m_State == State::eCode && Hash(rCode, m_Salt, m_nIterations) == m_Hash) {
        m_bOpen = true;
        if (std::exchange(m_nFailures, 0U) > 0) {
            Write(m_Salt, m_Hash, m_nIterations, 0);
        }
        return Outcome::eOpen;
    }
    ++m_nFailures;
    if (m_State == State::eCode) {
        Write(m_Salt, m_Hash, m_nIterations, m_nFailures);
    }
    BeginPause();
    return Outcome::eWrong;
}

bool CCodeLock::SetCode(const std::string& rCode) {
    if (IsLocked() || QString::fromStdString(rCode).size() < static_cast<qsizetype>(FEWEST_CHARACTERS)) {
        return false;
    }
    const std::string Salt = MakeSalt();
    const std::string Hashed = Hash(rCode, Salt, ITERATIONS);
    if (!Write(Salt, Hashed, ITERATIONS, 0)) {
        return false;
    }
    m_Salt = Salt;
    m_Hash = Hashed;
    m_nIterations = ITERATIONS;
    m_nFailures = 0;
    m_State = State::eCode;
    m_bOpen = true;
    return true;
}

bool CCodeLock::RemoveCode() {
    if (IsLocked() || (HasCode() && !QFile::remove(QString::fromStdString(m_File)))) {
        return false;
    }
    m_State = State::eNoCode;
    m_bOpen = false;
    return true;
}

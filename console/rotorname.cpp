#include "console/rotorname.h"

#include <QString>
#include <algorithm>

std::string CleanName(const std::string& rName) {
    QString Name = QString::fromUtf8(rName.data(), static_cast<qsizetype>(rName.size()));
    std::replace_if(
        Name.begin(), Name.end(), [](QChar Each) { return Each.category() == QChar::Other_Control; }, u' ');
    return Name.simplified().toStdString();
}

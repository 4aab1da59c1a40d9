#include "views/application/qt_application_icon.h"

#include <QApplication>
#include <QFile>
#include <QString>

namespace ovrin {

namespace {

QString fileOf(std::string_view asset) {
    if (asset == "EntranceIconLight") return QStringLiteral(":/assets/entrance-icon-light.svg");
    if (asset == "EntranceIconDark") return QStringLiteral(":/assets/entrance-icon-dark.svg");
    return {};
}

}  // namespace

bool QtApplicationIcon::hasImage(std::string_view asset) const {
    return QFile::exists(fileOf(asset));
}

void QtApplicationIcon::setImage(std::string_view asset) {
    QApplication::setWindowIcon(icon(asset));
}

QIcon QtApplicationIcon::icon(std::string_view asset) {
    const QString file = fileOf(asset);
    return file.isEmpty() ? QIcon() : QIcon(file);
}

}  // namespace ovrin

#include "map/live_page_files.h"

#include <QtCore/QFile>
#include <QtCore/QString>

namespace tremor {
namespace {

std::string resource(const QString& name) {
    QFile file(QStringLiteral(":/map/") + name);
    if (!file.open(QIODevice::ReadOnly))
        throw RuntimeError(ErrorNumber::FileNotFound);
    return file.readAll().toStdString();
}

} // namespace

LivePageFiles livePageFiles() {
    const auto part = [](const char* name) {
        return LivePageFiles::Part{name, resource(QLatin1StringView(name))};
    };
    return {resource(QStringLiteral("live_page.html")),
            {part("maps_engine.js"), part("live_page.css"), part("live_page.js")}};
}

} // namespace tremor

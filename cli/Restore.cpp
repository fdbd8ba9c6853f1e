#include "Commands.h"
#include "JsonReport.h"
#include "Messages.h"
#include "Places.h"
#include "Reader/Backups.h"
#include "Summary.h"
#include "Terminal.h"

#include <sstream>

namespace Commands {
namespace {

using JsonReport::Json;
using Reader::Backup;

std::string timeOf(const QDateTime& time) {
    return time.toString(Qt::ISODate).toStdString();
}

Json asJson(const std::vector<Backup>& backups) {
    Json list = Json::array();
    for (const Backup& backup : backups)
        list.push_back({{"file", FileNames::bytesOf(backup.path)},
                        {"size", backup.size},
                        {"made", timeOf(backup.made.toUTC())},
                        {"saved", timeOf(backup.saved.toUTC())}});
    return list;
}

std::string asText(const std::vector<Backup>& backups) {
    std::ostringstream out;
    for (const Backup& backup : backups)
        out << Terminal::escaped(FileNames::bytesOf(backup.path)) << "  made " << timeOf(backup.made)
            << ", saved " << timeOf(backup.saved) << ", " << backup.size << " bytes\n";
    return out.str();
}

} // namespace

int restore(const Arguments& arguments, Output& output) {
    output.setInput(Places::path(arguments.file));
    const QString file = Places::inputFor(arguments);
    output.setInput(file);
    const std::vector<Backup> backups = Reader::backupsOf(file);
    if (backups.empty())
        throw Messages::Failure(Messages::noBackup(file));
    if (arguments.list) {
        if (output.isJson())
            output.setResult({{"backups", asJson(backups)}});
        else
            output.print(asText(backups));
        return Messages::Done;
    }
    const Backup& newest = backups.front();
    const auto [target, kept] = Reader::restore(file, newest);
    if (output.isJson()) {
        output.setResult({{"restored", FileNames::bytesOf(target)},
                          {"backup", FileNames::bytesOf(newest.path)},
                          {"kept", kept.isEmpty() ? Json() : Json(FileNames::bytesOf(kept))}});
    } else if (!output.isQuiet()) {
        output.note(Texts::restored(target, newest.path, kept));
    }
    return Messages::Done;
}

} // namespace Commands

#pragma once

#include "batch/Options.h"
#include "batch/State.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <string>

namespace Batch {

/// Pages about single files, in a folder beside the table of a batch. Each is written by a process of its own, since
/// what a file does to that costs its page only.
class Pages {
public:
    struct Options {
        WhichPages which = WhichPages::Needed;
        QStringList words; ///< options of `report`
        int jobs = 1;
        int timeout = 0; ///< seconds for one page; 0 for no limit
        std::function<bool()> isStopped;
    };

    /// For a table that has this name.
    Pages(const std::string& table, Options options);

    /// The folder of the pages of a table: "found-pages" for "found.html".
    static QString folderFor(const std::string& table);

    /// Writes the pages of all rows that are to have one; where that is stopped, the rest has none. Throws
    /// Messages::Failure.
    void write(State& state) const;

    /// The page of a row as the table links to it; empty where it has none.
    std::string linkTo(const Row& row) const;

private:
    bool isWanted(const Row& row) const;
    QString fileFor(const Row& row) const;
    void writeFailure(const Row& row, const std::string& reason) const;

    QString m_folder;
    Options m_options;
};

/// The options of `report` among those that the results of a batch depend on.
QStringList optionsForPages(State& state);

} // namespace Batch

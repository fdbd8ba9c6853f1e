#pragma once

#include "Reader/AdaptorTable.h"
#include "support/Files.h"
#include "support/Program.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace Tests {

/// Base class of tests that run the program in a temporary folder.
class ProgramTest : public testing::Test {
protected:
    Outcome run(const QStringList& arguments, const QByteArray& input = {}) const {
        return runProgram(arguments, m_folder.path(), input);
    }
    /// Runs the program by way of a shell that does `first` before; "$@" is the program's call there.
    Outcome runAfter(const QString& first, const QStringList& arguments) const {
        return runCommand(
            QStringLiteral("/bin/sh"),
            QStringList{"-c", first + "exec \"$@\"", "sh", QString::fromStdString(program().string())} +
                arguments,
            m_folder.path(), {},
            first.contains(QLatin1String("ulimit -f")) ? withoutCounters()
                                                       : QProcessEnvironment::systemEnvironment());
    }
    QString path(const QString& name) const { return m_folder.filePath(name); }
    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray read(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }
    bool exists(const QString& name) const { return QFileInfo::exists(path(name)); }
    QStringList files() const { return QDir(m_folder.path()).entryList(QDir::Files, QDir::Name); }
    void expectFailure(const QStringList& arguments, int code, const QByteArray& part) const {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, code) << outcome.err.toStdString();
        EXPECT_TRUE(outcome.err.contains(part)) << outcome.err.toStdString();
        EXPECT_EQ(outcome.out, "");
    }

    QTemporaryDir m_folder;
};

inline QByteArray sample(const char* name) {
    return QByteArray::fromStdString(readFile(samplesFolder() / name));
}

/// The default name of a migration's result: "film.v77.json" for "film".
inline QString migratedName(const QString& name) {
    return name + ".v" + QString::number(Reader::currentVersion) + ".json";
}

/// A project of the newest version with that root object.
inline QByteArray jsonProject(const QByteArray& root) {
    return R"({"version": "1.0", "schemaVersion": )" + QByteArray::number(Reader::currentVersion - 1) +
           ", \"data\": " + root + "}";
}

/// A project of version 62, unless given another, with a timeline, a track and one clip, to which `extra` is added.
inline QByteArray archive(const QByteArray& extra = {}, const QByteArray& version = " schemaVersion='62'") {
    return "<Archive" + version +
           "><RootRef type='ObjectRef' value='2'/>"
           "<RootObject type='Predeclarator' objectId='1'><predeclarations type='Array' size='1'>"
           "<Item type='Item' index='1'><Data type='Predeclare' objectId='9'><typeName type='String' "
           "value='Timeline::Clip'/>"
           "<oid type='ObjectRef' value='3'/><poid type='ObjectRef' value='0'/><refs type='Array' "
           "size='0'/></Data></Item>"
           "</predeclarations></RootObject>"
           "<RootObject type='Timeline::Object' objectId='2'>"
           "<clips type='Array' size='1'><Item type='Item' index='1'><Key type='ObjectRef' value='3'/>"
           "<Value type='Timeline::ClipTiming' objectId='4'><track type='ObjectRef' value='5'/>"
           "<timestamp type='int64_t' value='0'/><duration type='int64_t' value='40'/></Value></Item></clips>"
           "<tracks type='Array' size='1'><Item type='Item' index='1'><Data type='ObjectRef' "
           "value='5'/></Item></tracks>"
           "</RootObject>"
           "<RootObject type='Timeline::Clip' objectId='3'><name type='String' value='Beach'/><type "
           "type='int32_t' value='1'/>"
           "</RootObject>"
           "<RootObject type='Timeline::Track' objectId='5'><type type='int32_t' value='16'/><used "
           "type='bool' value='1'/>"
           "<timeline type='ObjectRef' value='2'/></RootObject>" +
           extra + "</Archive>";
}

} // namespace Tests

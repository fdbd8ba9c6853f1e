// The module project_adaptors._native. Arguments are plain values, and reports are JSON texts: what users see of it is
// made of them in Python.

#include "MemoryReserve.h"
#include "ProjectAdaptors/Version.h"
#include "Reader/Error.h"
#include "Report/FileNames.h"
#include "Work.h"

#include <QFile>
#include <QHashFunctions>

#include <glog/logging.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <tuple>

namespace py = pybind11;

namespace {

/// Thrown where a signal handler of Python raised an exception, which is set then.
struct Interrupted {};

/// Lets Python handle signals, such as Ctrl-C, several times a second. Handlers run on the main thread only.
class SignalCheck {
public:
    void operator()() {
        const auto now = std::chrono::steady_clock::now();
        if (now - m_last < std::chrono::milliseconds(200))
            return;
        m_last = now;
        const py::gil_scoped_acquire lock;
        if (PyErr_CheckSignals() != 0)
            throw Interrupted();
    }

private:
    std::chrono::steady_clock::time_point m_last = std::chrono::steady_clock::now();
};

QString pathIn(const py::bytes& name) {
    return QFile::decodeName(QByteArray::fromStdString(name));
}

/// A view of Python's bytes, which live as long as the call.
QByteArray view(const py::bytes& bytes) {
    char* data = nullptr;
    Py_ssize_t size = 0;
    if (PyBytes_AsStringAndSize(bytes.ptr(), &data, &size) != 0)
        throw py::error_already_set();
    // Qt's arrays are smaller; the reader refuses what is half as large.
    constexpr Py_ssize_t most = (Py_ssize_t(1) << 31) - 64;
    return QByteArray::fromRawData(data, static_cast<int>(std::min(size, most)));
}

Work::Source sourceIn(const py::bytes& location, const std::optional<py::bytes>& content) {
    return {pathIn(location), content ? std::optional(view(*content)) : std::nullopt};
}

std::string textOf(const Work::Json& json) {
    return json.dump(-1, ' ', true, Work::Json::error_handler_t::replace);
}

/// Raises the exception that `errors.<maker>` makes of a JSON text.
[[noreturn]] void raise(const char* maker, const Work::Json& facts) {
    const py::object error = py::module_::import("project_adaptors.errors").attr(maker)(textOf(facts));
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
    throw py::error_already_set();
}

/// Works without the lock of the interpreter, so that other threads run meanwhile, and raises what goes wrong.
template <class Part>
auto unlocked(Part part) {
    MemoryReserve::refill();
    try {
        const py::gil_scoped_release release;
        return part();
    } catch (const Interrupted&) {
        throw py::error_already_set();
    } catch (const Work::Failure& failure) {
        raise("made_of", Work::factsOf(failure.error, failure.advice));
    } catch (const Work::Refusal& refusal) {
        raise("refused", refusal.report);
    } catch (const Reader::Error& error) {
        raise("made_of", Work::factsOf(error));
    }
}

/// The arguments that most functions have: the version to reach, the version that replaces what the document says,
/// whether it is repaired, and the folders of markers in paths.
using Common = std::tuple<int, std::optional<int>, bool, std::tuple<py::bytes, py::bytes, py::bytes>>;

Work::Options optionsIn(const Common& common) {
    const auto& [to, from, repair, folders] = common;
    const auto& [packages, aiModels, downloadable] = folders;
    return {to, from, repair, {pathIn(packages), pathIn(aiModels), pathIn(downloadable)}, SignalCheck()};
}

/// A function that makes a document of one, and a report.
template <Work::Migrated (*work)(const Work::Source&, const Work::Options&, Reader::Report::Strictness,
                                 const QString&)>
py::tuple converted(const py::bytes& location, const std::optional<py::bytes>& content, const Common& common,
                    int strictness, const py::bytes& target) {
    const Work::Source source = sourceIn(location, content);
    const Work::Options options = optionsIn(common);
    const QString place = pathIn(target);
    const Work::Migrated result = unlocked(
        [&] { return work(source, options, static_cast<Reader::Report::Strictness>(strictness), place); });
    return py::make_tuple(py::bytes(result.data.constData(), static_cast<std::size_t>(result.data.size())),
                          textOf(result.report), result.isWhole);
}

std::string info(const py::bytes& location, const std::optional<py::bytes>& content, const Common& common) {
    const Work::Source source = sourceIn(location, content);
    const Work::Options options = optionsIn(common);
    return unlocked([&] { return textOf(Work::info(source, options)); });
}

std::string verify(const py::bytes& location, const std::optional<py::bytes>& content, const Common& common) {
    const Work::Source source = sourceIn(location, content);
    const Work::Options options = optionsIn(common);
    return unlocked([&] { return textOf(Work::verify(source, options)); });
}

std::string diff(const py::bytes& locationBefore, const std::optional<py::bytes>& contentBefore,
                 const py::bytes& locationAfter, const std::optional<py::bytes>& contentAfter,
                 const Common& common, bool asTheyAre) {
    const Work::Source before = sourceIn(locationBefore, contentBefore);
    const Work::Source after = sourceIn(locationAfter, contentAfter);
    const Work::Options options = optionsIn(common);
    return unlocked([&] { return textOf(Work::diff(before, after, options, asTheyAre)); });
}

std::string explain(const py::bytes& location, const std::optional<py::bytes>& content, const Common& common,
                    const std::string& step, const std::string& clip) {
    const Work::Source source = sourceIn(location, content);
    const Work::Options options = optionsIn(common);
    return unlocked([&] { return textOf(Work::explain(source, options, step, clip)); });
}

std::string steps(int from, int to) {
    return textOf(Work::steps(from, to));
}

void writeFile(const py::bytes& path, const py::bytes& data, bool replace, const py::bytes& input) {
    const QString target = pathIn(path);
    const QString source = pathIn(input);
    const QByteArray bytes = view(data);
    unlocked([&] {
        Work::write(target, bytes, replace, source);
        return true;
    });
}

/// Settings of the process, as the program has them.
void setUpProcess() {
    MemoryReserve::install();
    Reader::FileNames::keepAllBytes();
    // Qt orders attributes by a hash: the same input gives the same bytes only with a fixed seed.
    qSetGlobalQHashSeed(0);
    // Log lines of steps are in the reports. glog writes no files and nothing of its own, unless it is in use here.
    if (google::IsGoogleLoggingInitialized())
        return;
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging("project_adaptors");
}

} // namespace

PYBIND11_MODULE(_native, module) {
    setUpProcess();
    module.def("migrate", converted<Work::migrate>);
    module.def("export_otio", converted<Work::exportOtio>);
    module.def("info", info);
    module.def("verify", verify);
    module.def("diff", diff);
    module.def("explain", explain);
    module.def("steps", steps);
    module.def("write", writeFile);
    module.attr("version") = PROJECT_ADAPTORS_VERSION;
    module.attr("newest") = Reader::currentVersion;
}

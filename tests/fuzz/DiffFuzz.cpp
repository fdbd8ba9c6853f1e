// Any project is compared with itself and with a changed one, and the differences are described.

#include "DiffReport.h"
#include "Fuzz.h"
#include "JsonReport.h"
#include "Mutate.h"
#include "Reader/Comparison.h"

#include <QHashFunctions>

FUZZ_MUTATE_BY(Fuzz::mutateProject)

namespace {

void describe(const Reader::Document& before, const Reader::Document& after,
              const std::vector<Reader::Difference>& differences) {
    const DiffReport::Result result = {{QStringLiteral("before"), before.form(), before.version()},
                                       {QStringLiteral("after"), after.form(), after.version()},
                                       std::nullopt,
                                       differences};
    Fuzz::checkFitForTerminal(DiffReport::text(result));
    Fuzz::checkIsJson(JsonReport::line(Reader::Report::comparison(result)));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("DiffFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes = Fuzz::bytesOf(data, size);
    const std::optional<Reader::Document> before = Fuzz::read(bytes);
    if (!before)
        return 0;
    const Reader::ComparedProject project = Reader::readForComparison(*before, QString());
    Fuzz::check(Reader::compare(project, project).empty(), "a project is different from itself");

    Fuzz::Random random(qHash(bytes));
    const std::optional<Reader::Document> after = Fuzz::read(Fuzz::mutateProject(bytes, {}, random));
    if (!after || after->form() != before->form())
        return 0;
    const Reader::ComparedProject changed = Reader::readForComparison(*after, QString());
    describe(*before, *after, Reader::compare(project, changed));
    describe(*after, *before, Reader::compare(changed, project));
    return 0;
}

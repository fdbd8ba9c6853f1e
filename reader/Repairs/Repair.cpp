#include "Repairs/Repair.h"

#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"
#include "Reader/TextForm.h"
#include "Serialize/Json/FlatObject.h"

namespace Words = Archive::Words;

namespace Repairs {
namespace {

constexpr std::size_t mostPlaces = 20;

} // namespace

void Changes::note(const QDomElement& e) {
    ++m_made.count;
    mention(e);
}

void Changes::mention(const QDomElement& e) {
    QDomElement object = e;
    while (!object.isNull() && object.tagName() != Words::RootObject)
        object = object.parentNode().toElement();
    if (!object.isNull())
        add(Archive::typeOf(object).toStdString(), Archive::objectIdOf(object));
}

void Changes::note(unsigned long long id, const nlohmann::json& object) {
    ++m_made.count;
    mention(id, object);
}

void Changes::mention(unsigned long long id, const nlohmann::json& object) {
    add(Serialize::Json::getClassName(object).value_or(std::string()), id);
}

void Changes::note(std::string_view text, std::size_t byte, const std::string& what) {
    ++m_made.count;
    if (m_made.places.size() >= mostPlaces)
        return;
    const auto [line, column] = Reader::lineAndColumn(text, byte);
    m_made.places.push_back({line, column, what});
}

void Changes::add(std::string className, unsigned long long id) {
    if (m_known.emplace(id, className).second)
        m_made.objects.push_back({std::move(className), id});
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

} // namespace Repairs

// The types of the interfaces: what callers can rely on.

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/AbstractAdaptorXml.h"
#include "Adaptors/Backend.h"
#include "Adaptors/IReaderAdaptor.h"
#include "Adaptors/Project/PortableLoadAdaptor.h"
#include "Adaptors/Project/PortableSaveAdaptor.h"
#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V60_CollectionItemDescriptionAdaptor.h"
#include "Adaptors/Project/V63_LutEffectAuxResourceAdaptor.h"
#include "Serialize/Json/FlatObject.h"
#include "Util/JsonMigrationAdaptor.h"
#include "Util/XmlToJsonAdaptor.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

namespace {

using Bundle::AbstractAdaptorJson;
using Bundle::AbstractAdaptorXml;
using Bundle::IReaderAdaptor;

static_assert(static_cast<int>(Bundle::Backend::Xml) == 0);
static_assert(static_cast<int>(Bundle::Backend::Json) == 1);

template <class T>
constexpr bool isInterface = std::is_abstract_v<T>&& std::has_virtual_destructor_v<T> &&
                             sizeof(T) ==
                                 sizeof(void*); // no data except the pointer to the virtual functions
static_assert(isInterface<AbstractAdaptorXml>);
static_assert(isInterface<AbstractAdaptorJson>);
static_assert(isInterface<IReaderAdaptor>);

static_assert(
    std::is_same_v<decltype(&AbstractAdaptorXml::adapt), void (AbstractAdaptorXml::*)(QDomDocument&)>);
static_assert(std::is_same_v<decltype(&AbstractAdaptorJson::adapt),
                             void (AbstractAdaptorJson::*)(Serialize::Json::FlatObject&)>);
static_assert(std::is_same_v<decltype(&IReaderAdaptor::actualVersion), int (IReaderAdaptor::*)() const>);
static_assert(std::is_same_v<decltype(&IReaderAdaptor::name), QString (IReaderAdaptor::*)() const>);
static_assert(std::is_same_v<decltype(&IReaderAdaptor::needAdaptForActualVersion),
                             bool (IReaderAdaptor::*)(const nlohmann::json&) const>);
static_assert(std::is_same_v<decltype(&IReaderAdaptor::canConvert),
                             bool (IReaderAdaptor::*)(Bundle::Backend, Bundle::Backend) const>);
static_assert(std::is_same_v<decltype(&IReaderAdaptor::convert),
                             std::pair<int, nlohmann::json> (IReaderAdaptor::*)(const QDomDocument&)>);

template <class T>
constexpr bool isValue =
    std::is_default_constructible_v<T>&& std::is_copy_constructible_v<T>&& std::is_move_constructible_v<T>&&
        std::is_copy_assignable_v<T>&& std::is_move_assignable_v<T>&& std::has_virtual_destructor_v<T> &&
    !std::is_final_v<T>;
static_assert(isValue<Project::V28_ClipLabelAdaptor>);
static_assert(isValue<Project::V60_CollectionItemDescriptionAdaptor>);
static_assert(isValue<Project::V63_LutEffectAuxResourceAdaptor>);
static_assert(sizeof(Project::V28_ClipLabelAdaptor) == sizeof(AbstractAdaptorXml));

template <class T>
constexpr bool holdsAPath = !std::is_default_constructible_v<T> && std::is_copy_constructible_v<T> &&
                            std::is_copy_assignable_v<T> && std::is_constructible_v<T, const QString&> &&
                            std::is_base_of_v<AbstractAdaptorJson, T> && !std::is_final_v<T>;
static_assert(holdsAPath<Project::PortableLoadAdaptor>);
static_assert(holdsAPath<Project::PortableSaveAdaptor>);

// The two functions that the document reader implements are pure virtual.
static_assert(std::is_abstract_v<Util::JsonMigrationAdaptor>);
static_assert(std::is_base_of_v<IReaderAdaptor, Util::JsonMigrationAdaptor>);
static_assert(!std::is_base_of_v<IReaderAdaptor, Util::XmlToJsonAdaptor>);
static_assert(!std::is_base_of_v<AbstractAdaptorXml, Util::XmlToJsonAdaptor>);
static_assert(!std::is_base_of_v<AbstractAdaptorJson, Util::XmlToJsonAdaptor>);
static_assert(std::is_copy_assignable_v<Util::XmlToJsonAdaptor> &&
              std::is_move_assignable_v<Util::XmlToJsonAdaptor>);

TEST(Interfaces, AStepOfBothFormsIsSelectedByItsDocument) {
    using Both = Project::V60_CollectionItemDescriptionAdaptor;
    Both adaptor;
    AbstractAdaptorXml& xml = adaptor;
    AbstractAdaptorJson& json = adaptor;
    // The XML form comes first.
    EXPECT_EQ(static_cast<void*>(&xml), static_cast<void*>(&adaptor));
    EXPECT_NE(static_cast<void*>(&json), static_cast<void*>(&adaptor));
    QDomDocument document;
    Serialize::Json::FlatObject flat;
    adaptor.adapt(document);
    adaptor.adapt(flat);
    EXPECT_TRUE(document.isNull());
    EXPECT_TRUE(flat.objects.empty());
}

TEST(Interfaces, AdaptorsAreHeldByValueOrByTheirInterface) {
    std::vector<Project::PortableLoadAdaptor> byValue;
    byValue.emplace_back(QStringLiteral("/a"));
    byValue.emplace_back(QStringLiteral("/b/c"));
    byValue[0] = byValue[1];
    Serialize::Json::FlatObject document;
    *document.createObject("File") = {{"@meta", {{"class_name", "File"}, {"object_id", 1}}}, {"path", "x"}};
    AbstractAdaptorJson& load = byValue[0];
    load.adapt(document);
    EXPECT_EQ(document.objects.at(1)["path"], "/b/x");
}

TEST(Interfaces, TheConverterKeepsItsStateWhenCopiedAndMoved) {
    struct Numbered : Util::JsonMigrationAdaptor {
        using JsonMigrationAdaptor::JsonMigrationAdaptor;
        int actualVersion() const override { return 0; }
        QString name() const override { return {}; }
    };
    Numbered used(5);
    used.convert(QDomDocument());
    Numbered fresh(6);
    const Numbered copy = fresh; // before any conversion
    EXPECT_FALSE(copy.converted());
    fresh = used;
    EXPECT_TRUE(fresh.converted());
    EXPECT_EQ(fresh.convert(QDomDocument()).first, 5);
    Numbered moved = std::move(used);
    EXPECT_TRUE(moved.converted());
    EXPECT_EQ(moved.convert(QDomDocument()).first, 5);
}

} // namespace

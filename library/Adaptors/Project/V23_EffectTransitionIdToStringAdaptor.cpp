#include "Adaptors/Project/V23_EffectTransitionIdToStringAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

#include <algorithm>
#include <span>

using namespace Archive::Internal;

namespace Project {
namespace {

struct Identifier {
    int number;
    const char* text;
};

// clang-format off
constexpr Identifier effectIdentifiers[] = {
    {0, "f7912bf2-b3b8-4d86-9ac1-7dc59b0d2bef"},
    {1, "d1e2a357-7d46-41c8-a6ba-6bccf926c77e"},
    {2, "c60d4a11-b946-49db-ab9d-93898ce04e54"},
    {3, "e8400386-05fe-428e-97e6-5a52eaed904c"},
    {4, "72984ac5-3af2-4c27-8342-d940507f188f"},
    {5, "45fc4a8b-2261-452e-90e2-fb882118a392"},
    {6, "ef8bf68b-761a-48c2-8923-6ff4137819f9"},
    {7, "5cd3b609-1357-4f98-86c7-1302c9dea530"},
    {8, "49faba34-ebef-42cd-a315-efb43d76cbb0"},
    {9, "87824c03-f25f-4043-9cb6-3a90eb27b699"},
    {10, "d20134d6-99d6-4b3f-b2b6-30e460012f51"},
    {11, "d3d9f297-74da-41d6-a955-8109cbed0020"},
    {12, "f60a32dd-2591-4cd3-859a-69f9c6a6838f"},
    {13, "daa4afbf-4572-45ff-9d7d-6c4bccb2e121"},
    {14, "51041e43-84ea-4e84-b26b-34b68240f8ec"},
    {15, "a19188b6-c1fc-49e1-9395-8e8c2c17078b"},
    {16, "139fbe65-4066-476f-987c-a143f5bcbab7"},
    {17, "2647e4b8-5689-4bf1-b45f-7f4b3b35e49b"},
    {18, "b6202955-dc7b-4592-9b42-d812d47d240c"},
    {19, "d01a98be-9a59-4217-95f5-06a955782b8a"},
    {20, "5830bcba-b2de-4f36-9230-636b6263c9be"},
    {21, "4ddc3604-027d-433b-9837-1c4870fb32e0"},
    {22, "7e31a057-3681-47b8-a842-337cb0200d84"},
    {23, "7cbc055b-98bf-4fcc-be7d-f431a05e608a"},
    {24, "9218c5c2-64b4-4676-b4d3-f861cb80aae4"},
    {25, "333ac8ef-3fba-4491-b936-de0c3e9d1b16"},
    {26, "1e308612-4ad6-4590-80a1-4cdc9dfa30e7"},
    {27, "804fa74a-f079-4538-a588-6cfa4f20ea81"},
    {28, "0429bc71-f252-4a38-9ac2-57689f07ec46"},
    {29, "43ce922f-5666-492c-ad2d-b08da41e3b26"},
    {30, "bea0efc7-dbab-44fd-ae07-6c4801ade623"},
    {31, "85d96ab3-23ff-4b5d-9249-2e6e239d1445"},
    {35, "ca7a128c-90f0-4faf-afe2-1756a37379c8"},
    {36, "7f10aa3a-79c9-4bdf-9a5c-7005690a961a"},
    {37, "342d639d-1182-4b70-b071-1831d484cb85"},
    {38, "23426fc3-a681-413a-a9fe-340503101431"},
    {39, "e738de79-e6e1-4d25-9ae2-6bec3b427525"},
    {40, "5899d84f-ec6c-4896-b9b9-8c2556468536"},
    {41, "72edac99-e300-45d8-8e57-0f7bfef3bf54"},
    {42, "4675ad3e-cffd-4979-ae1f-5cbf07e8cbdd"},
    {43, "95743761-e5fa-4bc7-9553-30450ad0bae7"},
    {44, "103da8a8-713c-4618-b11e-52cf492e2061"},
    {45, "e1cbf0ef-3d75-4626-aaaf-c41e47c9c9c4"},
    {46, "f0c18b60-b891-453d-b80e-dedd20f349fb"},
    {47, "6ebb17e3-db4e-4cd4-9948-a154a43f3282"},
    {48, "2f95ac2d-7ee2-4f3e-8391-9a1ee8674521"},
    {49, "a27e835a-0cd2-4194-9817-834ca4fca27f"},
    {50, "4e96f14f-3abe-46e7-9600-6b7cba9702c2"},
    {51, "75ec87aa-b009-4e27-8b9a-716e5c8eca42"},
    {52, "4c412762-56f7-4703-a840-ea2ccf5f7321"},
    {53, "6282435b-aef6-47fd-a234-9eb95a83ea58"},
    {54, "a10632bf-c9ad-4399-ab6b-cf2fd39b93f6"},
    {57, "08fa3c82-5bea-4629-b7d5-d62b5bc3f7e5"},
    {58, "523d41e0-d692-4e08-817a-cc69788c6ab2"},
    {59, "5b9d1194-edb7-44fa-a01c-3f4ed2b160e8"},
    {60, "5b04a03a-bdca-4988-b10a-5c3d50303ab9"},
    {62, "edb66866-0bfe-40ad-9669-7152e1e31a1d"},
    {63, "41fd2dcc-3529-4e95-a94c-d7ed349d56ed"},
    {64, "b384a817-878d-4637-ac3f-c47ac104d6db"},
    {32769, "bf86d91d-8347-4030-9e6c-2872dfcf1628"},
    {32770, "608e3b3a-b396-44e8-8cab-88c0a729b2f9"},
    {32771, "d405a097-0ee0-4b72-830e-683899314730"},
    {32772, "820c9391-6388-49f7-83a2-590014abcfa3"},
    {32773, "4b8b30d0-f345-48c1-b8d3-acca60bf2083"},
};

constexpr Identifier transitionIdentifiers[] = {
    {0, "a549f16a-3002-48ef-864c-5927572855f6"},
    {1, "a0476d04-6c9e-4e8f-a0d7-b8365c8fad40"},
    {2, "171d91b7-88b4-47d2-a151-72a7e3b4fc52"},
    {3, "2fca13ac-caff-4c69-adf6-999c03dab5b1"},
    {4, "aea885b5-7dcd-410e-94d6-31a40edb40a4"},
    {5, "eccf26ce-0804-42e4-9de8-a4c983b6a0ae"},
    {6, "544a34ae-9957-442f-8ac2-e77c01fc8f81"},
    {7, "e521aa82-a5fb-42ef-be7b-28809073c09f"},
    {8, "149d362d-9033-4727-9bac-70aa81638de6"},
    {9, "0a82178e-13f9-4cf8-a6ca-dd9e2b518b0c"},
    {10, "b77da379-849f-4817-996a-f741247d06ee"},
    {11, "c379ebc9-2bc2-403a-a7a3-46295601b3c2"},
    {12, "04bb87a6-1a21-4e86-8df6-7e39b627fb7d"},
    {13, "b95596a6-823c-4810-ac9a-8865952a21df"},
    {14, "5e3aae7c-a268-4d74-ac1f-beac12ec1c1c"},
    {15, "f4e36db1-2bd7-4dd5-9038-603cb13efe14"},
    {16, "7876b484-a122-4935-b99e-874e8021709a"},
    {17, "b923cbf1-47d2-42af-a470-286ac05b9887"},
    {18, "505f4c0e-1e6a-42fc-af60-d4200885a6ab"},
    {19, "ab033fab-6eec-4d52-ad49-5016b1c6d1ca"},
    {20, "e483122f-89e2-4280-b6c9-d198bf598644"},
    {21, "5aa22a87-b3ea-44d4-aad5-14659f47a550"},
    {22, "3c6984e5-8659-423f-abdf-0e2c8f1a75a2"},
    {23, "6a1debf7-2d96-4225-ad77-1e7eaec3c14c"},
    {24, "b0015729-e62f-438b-ae72-0159af63be96"},
    {25, "24a31900-9654-4dd5-8895-50d9aaa30f25"},
    {32, "0421d02c-2693-46f1-874f-f54a76becef1"},
    {33, "4f114f1a-046f-4b73-a6b5-3201e3f6f3e6"},
    {34, "4404244b-0335-4c0d-b4c2-66c141c8c5cf"},
    {35, "4b3d0c45-135d-4fee-9d7b-d569e9a3ceee"},
    {36, "0ae4e754-fb4e-457e-90f1-5d8544fb1a61"},
    {37, "123daeeb-2603-4268-8e84-b37289090ac8"},
    {38, "2297d6ab-7f31-4171-81b0-0e6025310304"},
    {39, "582d7d88-3a7c-4d52-9e27-d71ae531f0bb"},
    {40, "422de25e-3660-46cf-b598-819fa34f6cff"},
    {41, "d8328c04-be9d-4cb2-8298-1834965ed66f"},
    {48, "695f107e-d494-45cf-a244-4fc7dc0230b6"},
    {49, "7575ca6e-bc13-418c-a1f0-ccfef55be6f7"},
    {50, "b08009b6-6864-44a6-a4ee-1bfa7dbd6c8d"},
    {51, "1861f4ac-4aac-4426-848b-e9f1c1501757"},
    {52, "cf6b36d4-7d69-4abb-b554-3a87672784e8"},
    {53, "1808c972-d33f-484b-9a88-df088faf3be4"},
};
// clang-format on

QString identifierOf(int number, std::span<const Identifier> identifiers) {
    const auto row = std::ranges::find(identifiers, number, &Identifier::number);
    // Quirk: an unknown number is lost: it becomes an empty text, not a null one.
    return row == identifiers.end() ? QString("") : QString(row->text);
}

void convertField(ArchiveEditor& archive, const QDomElement& field, std::span<const Identifier> identifiers) {
    // Quirk: a text that is no number, such as an identifier, gets the identifier of the number 0.
    const QString identifier = identifierOf(int32Of(field), identifiers);
    archive.setType(field, "String");
    archive.setText(field, identifier);
}

} // namespace

void V23_EffectTransitionIdToStringAdaptor::convert(ArchiveEditor& archive) {
    for (const auto& [object, type] : archive.baseParts()) {
        if (type == QLatin1String("Effect::Object")) {
            convertField(archive, childOf(object, "id"), effectIdentifiers);
            convertField(archive, childOf(object, "uniqueId"), effectIdentifiers);
        } else if (type == QLatin1String("Transition::Object")) {
            convertField(archive, childOf(object, "id"), transitionIdentifiers);
        }
    }
}

} // namespace Project

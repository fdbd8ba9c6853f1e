// Every identifier that effects and transitions get at version 23, compared with a separate list. To be
// independent, that list is sorted by identifier and has no hyphens.

#include "Adaptors/Project/V23_EffectTransitionIdToStringAdaptor.h"

#include <gtest/gtest.h>

#include <QDomDocument>
#include <QString>

#include <map>
#include <set>
#include <sstream>
#include <string>

namespace {

// clang-format off
const char* const effectRows =
    "0429bc71f2524a389ac257689f07ec46 28 08fa3c825bea4629b7d5d62b5bc3f7e5 57 "
    "103da8a8713c4618b11e52cf492e2061 44 139fbe654066476f987ca143f5bcbab7 16 "
    "1e3086124ad6459080a14cdc9dfa30e7 26 23426fc3a681413aa9fe340503101431 38 "
    "2647e4b856894bf1b45f7f4b3b35e49b 17 2f95ac2d7ee24f3e83919a1ee8674521 48 "
    "333ac8ef3fba4491b936de0c3e9d1b16 25 342d639d11824b70b0711831d484cb85 37 "
    "41fd2dcc35294e95a94cd7ed349d56ed 63 43ce922f5666492cad2db08da41e3b26 29 "
    "45fc4a8b2261452e90e2fb882118a392 5 4675ad3ecffd4979ae1f5cbf07e8cbdd 42 "
    "49faba34ebef42cda315efb43d76cbb0 8 4b8b30d0f34548c1b8d3acca60bf2083 32773 "
    "4c41276256f74703a840ea2ccf5f7321 52 4ddc3604027d433b98371c4870fb32e0 21 "
    "4e96f14f3abe46e796006b7cba9702c2 50 51041e4384ea4e84b26b34b68240f8ec 14 "
    "523d41e0d6924e08817acc69788c6ab2 58 5830bcbab2de4f369230636b6263c9be 20 "
    "5899d84fec6c4896b9b98c2556468536 40 5b04a03abdca4988b10a5c3d50303ab9 60 "
    "5b9d1194edb744faa01c3f4ed2b160e8 59 5cd3b60913574f9886c71302c9dea530 7 "
    "608e3b3ab39644e88cab88c0a729b2f9 32770 6282435baef647fda2349eb95a83ea58 53 "
    "6ebb17e3db4e4cd49948a154a43f3282 47 72984ac53af24c278342d940507f188f 4 "
    "72edac99e30045d88e570f7bfef3bf54 41 75ec87aab0094e278b9a716e5c8eca42 51 "
    "7cbc055b98bf4fccbe7df431a05e608a 23 7e31a057368147b8a842337cb0200d84 22 "
    "7f10aa3a79c94bdf9a5c7005690a961a 36 804fa74af0794538a5886cfa4f20ea81 27 "
    "820c9391638849f783a2590014abcfa3 32772 85d96ab323ff4b5d92492e6e239d1445 31 "
    "87824c03f25f40439cb63a90eb27b699 9 9218c5c264b44676b4d3f861cb80aae4 24 "
    "95743761e5fa4bc7955330450ad0bae7 43 a10632bfc9ad4399ab6bcf2fd39b93f6 54 "
    "a19188b6c1fc49e193958e8c2c17078b 15 a27e835a0cd241949817834ca4fca27f 49 "
    "b384a817878d4637ac3fc47ac104d6db 64 b6202955dc7b45929b42d812d47d240c 18 "
    "bea0efc7dbab44fdae076c4801ade623 30 bf86d91d834740309e6c2872dfcf1628 32769 "
    "c60d4a11b94649dbab9d93898ce04e54 2 ca7a128c90f04fafafe21756a37379c8 35 "
    "d01a98be9a59421795f506a955782b8a 19 d1e2a3577d4641c8a6ba6bccf926c77e 1 "
    "d20134d699d64b3fb2b630e460012f51 10 d3d9f29774da41d6a9558109cbed0020 11 "
    "d405a0970ee04b72830e683899314730 32771 daa4afbf457245ff9d7d6c4bccb2e121 13 "
    "e1cbf0ef3d754626aaafc41e47c9c9c4 45 e738de79e6e14d259ae26bec3b427525 39 "
    "e840038605fe428e97e65a52eaed904c 3 edb668660bfe40ad96697152e1e31a1d 62 "
    "ef8bf68b761a48c289236ff4137819f9 6 f0c18b60b891453db80ededd20f349fb 46 "
    "f60a32dd25914cd3859a69f9c6a6838f 12 f7912bf2b3b84d869ac17dc59b0d2bef 0 ";

const char* const transitionRows =
    "0421d02c269346f1874ff54a76becef1 32 04bb87a61a214e868df67e39b627fb7d 12 "
    "0a82178e13f94cf8a6cadd9e2b518b0c 9 0ae4e754fb4e457e90f15d8544fb1a61 36 "
    "123daeeb260342688e84b37289090ac8 37 149d362d903347279bac70aa81638de6 8 "
    "171d91b788b447d2a15172a7e3b4fc52 2 1808c972d33f484b9a88df088faf3be4 53 "
    "1861f4ac4aac4426848be9f1c1501757 51 2297d6ab7f31417181b00e6025310304 38 "
    "24a3190096544dd5889550d9aaa30f25 25 2fca13accaff4c69adf6999c03dab5b1 3 "
    "3c6984e58659423fabdf0e2c8f1a75a2 22 422de25e366046cfb598819fa34f6cff 40 "
    "4404244b03354c0db4c266c141c8c5cf 34 4b3d0c45135d4fee9d7bd569e9a3ceee 35 "
    "4f114f1a046f4b73a6b53201e3f6f3e6 33 505f4c0e1e6a42fcaf60d4200885a6ab 18 "
    "544a34ae9957442f8ac2e77c01fc8f81 6 582d7d883a7c4d529e27d71ae531f0bb 39 "
    "5aa22a87b3ea44d4aad514659f47a550 21 5e3aae7ca2684d74ac1fbeac12ec1c1c 14 "
    "695f107ed49445cfa2444fc7dc0230b6 48 6a1debf72d964225ad771e7eaec3c14c 23 "
    "7575ca6ebc13418ca1f0ccfef55be6f7 49 7876b484a1224935b99e874e8021709a 16 "
    "a0476d046c9e4e8fa0d7b8365c8fad40 1 a549f16a300248ef864c5927572855f6 0 "
    "ab033fab6eec4d52ad495016b1c6d1ca 19 aea885b57dcd410e94d631a40edb40a4 4 "
    "b0015729e62f438bae720159af63be96 24 b08009b6686444a6a4ee1bfa7dbd6c8d 50 "
    "b77da379849f4817996af741247d06ee 10 b923cbf147d242afa470286ac05b9887 17 "
    "b95596a6823c4810ac9a8865952a21df 13 c379ebc92bc2403aa7a346295601b3c2 11 "
    "cf6b36d47d694abbb5543a87672784e8 52 d8328c04be9d4cb282981834965ed66f 41 "
    "e483122f89e24280b6c9d198bf598644 20 e521aa82a5fb42efbe7b28809073c09f 7 "
    "eccf26ce080442e49de8a4c983b6a0ae 5 f4e36db12bd74dd59038603cb13efe14 15 ";

// clang-format on

std::map<int, std::string> identifiers(const char* rows) {
    std::map<int, std::string> result;
    std::istringstream in(rows);
    std::string digits;
    for (int number = 0; in >> digits >> number;) {
        for (const std::size_t place : {8U, 13U, 18U, 23U})
            digits.insert(place, "-");
        EXPECT_TRUE(result.emplace(number, digits).second) << number;
    }
    return result;
}

/// The field of one object of that class after the step.
std::string converted(const char* className, const char* field, int number) {
    QDomDocument document;
    QDomElement object = document.createElement("BaseOfObject");
    object.setAttribute("type", className);
    QDomElement e = document.createElement(field);
    e.setAttribute("type", "int32_t");
    e.setAttribute("value", QString::number(number));
    object.appendChild(e);
    document.appendChild(object);

    Project::V23_EffectTransitionIdToStringAdaptor().adapt(document);
    EXPECT_EQ(e.attribute("type").toStdString(), "String");
    EXPECT_TRUE(e.hasAttribute("value"));
    return e.attribute("value").toStdString();
}

void expectIdentifiers(const char* className, const char* field, const std::map<int, std::string>& expected) {
    const auto expectOne = [&](int number) {
        const auto row = expected.find(number);
        EXPECT_EQ(converted(className, field, number), row == expected.end() ? "" : row->second)
            << className << ' ' << field << ' ' << number;
    };
    for (int number = -2; number <= 130; ++number)
        expectOne(number);
    for (int number = 32760; number <= 32780; ++number)
        expectOne(number);
    for (const int number : {-32769, 65535, 65536, 98305})
        expectOne(number);
}

TEST(EffectTransitionIds, EffectsGetTheirIdentifiers) {
    const auto expected = identifiers(effectRows);
    EXPECT_EQ(expected.size(), 64U);
    expectIdentifiers("Effect::Object", "id", expected);
    expectIdentifiers("Effect::Object", "uniqueId", expected);
}

TEST(EffectTransitionIds, TransitionsGetTheirIdentifiers) {
    const auto expected = identifiers(transitionRows);
    EXPECT_EQ(expected.size(), 42U);
    expectIdentifiers("Transition::Object", "id", expected);
}

TEST(EffectTransitionIds, NumbersWithoutARow) {
    const auto effects = identifiers(effectRows);
    for (const int number : {32, 33, 34, 55, 56, 61})
        EXPECT_EQ(effects.count(number), 0U) << number;
    const auto transitions = identifiers(transitionRows);
    for (const int number : {26, 27, 28, 29, 30, 31, 42, 43, 44, 45, 46, 47})
        EXPECT_EQ(transitions.count(number), 0U) << number;
}

} // namespace

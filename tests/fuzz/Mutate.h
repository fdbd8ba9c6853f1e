#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>

/// Changes to whole parts of documents. Changed bytes alone seldom leave a document that gets past the parser.
namespace Fuzz {

using Random = std::minstd_rand;

/// Some parts moved, copied, removed, given other ids, types and values; from `donor`, where that is a document,
/// parts are taken too. Empty where `bytes` is no document.
QByteArray mutateXml(const QByteArray& bytes, const QByteArray& donor, Random& random);
QByteArray mutateJson(const QByteArray& bytes, const QByteArray& donor, Random& random);

using Mutation = QByteArray (*)(const QByteArray& bytes, const QByteArray& donor, Random& random);

std::size_t mutateOrElse(Mutation mutate, std::uint8_t* data, std::size_t size, std::size_t most,
                         unsigned int seed);
std::size_t crossOver(Mutation mutate, std::span<const std::uint8_t> first,
                      std::span<const std::uint8_t> second, std::span<std::uint8_t> out, unsigned int seed);

} // namespace Fuzz

/// Defines libFuzzer's hooks by one of the functions above; each third change is libFuzzer's own, on bytes.
#define FUZZ_MUTATE_BY(mutate)                                                                               \
    extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,   \
                                                   unsigned int seed) {                                      \
        return Fuzz::mutateOrElse(mutate, data, size, most, seed);                                           \
    }                                                                                                        \
    extern "C" std::size_t LLVMFuzzerCustomCrossOver(                                                        \
        const std::uint8_t* first, std::size_t firstSize, const std::uint8_t* second,                        \
        std::size_t secondSize, std::uint8_t* out, std::size_t most, unsigned int seed) {                    \
        return Fuzz::crossOver(mutate, {first, firstSize}, {second, secondSize}, {out, most}, seed);         \
    }

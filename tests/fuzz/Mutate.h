#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>

/// Changes of whole parts of documents. With changes of single bytes, few documents would be accepted by the
/// parser.
namespace Fuzz {

using Random = std::minstd_rand;

/// A document in which some parts are moved, copied or removed, or get other ids, types and values. Some
/// parts are copied from `donor` if that is a document. Empty if `bytes` is no document.
QByteArray mutateXml(const QByteArray& bytes, const QByteArray& donor, Random& random);
QByteArray mutateJson(const QByteArray& bytes, const QByteArray& donor, Random& random);

/// One of the two by the first character.
QByteArray mutateProject(const QByteArray& bytes, const QByteArray& donor, Random& random);

using Mutation = QByteArray (*)(const QByteArray& bytes, const QByteArray& donor, Random& random);

std::size_t mutateOrElse(Mutation mutate, std::uint8_t* data, std::size_t size, std::size_t most,
                         unsigned int seed);
std::size_t crossOver(Mutation mutate, std::span<const std::uint8_t> first,
                      std::span<const std::uint8_t> second, std::span<std::uint8_t> out, unsigned int seed);

} // namespace Fuzz

/// Defines libFuzzer's hooks with one of the functions above. One in three changes is libFuzzer's own change
/// of bytes.
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

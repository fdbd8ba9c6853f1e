#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QString>

#include <cstddef>
#include <vector>

namespace Bench {

/// Creates a large archive from a small one. Repeats the objects of a class, all objects that can be reached
/// through them only, and every array entry that refers to them. Copies have ids and indexes of their own,
/// and start when the previous copy ends. Objects that can be reached in another way, such as the timeline
/// and its tracks, are not repeated.
class Multiplier {
public:
    /// `className` is the class to repeat, or a prefix of several. The archive must have such an object,
    /// otherwise throws std::invalid_argument.
    Multiplier(const QDomDocument& archive, const QString& className);

    /// Sizes: of the given archive, which is one copy, or of what each further copy adds.
    struct Numbers {
        std::size_t elements = 0;
        std::size_t bytes = 0;
        std::size_t objects = 0; ///< of the repeated class
    };
    const Numbers& ofOne() const { return m_one; }
    const Numbers& ofEachFurther() const { return m_further; }

    /// The text of an archive with that many copies.
    QByteArray text(std::size_t copies) const;

private:
    friend class Recorder;

    /// A text followed by a number, which is increased by `step` for each copy.
    struct Piece {
        QByteArray text;
        bool hasNumber = false;
        long long number = 0;
        long long step = 0;
    };
    /// Pieces that are written either once, with the numbers of the last copy, or once for each further copy.
    struct Block {
        std::vector<Piece> pieces;
        bool isRepeated = false;
    };

    static void append(QByteArray& text, const Block& block, std::size_t copy);

    std::vector<Block> m_blocks;
    Numbers m_one;
    Numbers m_further;
};

} // namespace Bench

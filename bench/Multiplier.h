#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QString>

#include <cstddef>
#include <vector>

namespace Bench {

/// Makes a large archive of a small one. Objects of a class, with all that only they lead to, are repeated, and so is
/// every array entry that refers to them: copies have ids and array numbers of their own, and start when the copy
/// before them ends. What the document's root leads to otherwise, such as the timeline and its tracks, stays as it is.
class Multiplier {
public:
    /// `className` is the class to repeat, or how the names of several begin. The archive must have some.
    Multiplier(const QDomDocument& archive, const QString& className);

    /// Numbers of an archive with one copy, which is the given one, and of what each further copy adds.
    struct Numbers {
        std::size_t elements = 0;
        std::size_t bytes = 0;
        std::size_t objects = 0; ///< of the class that is repeated
    };
    const Numbers& ofOne() const { return m_one; }
    const Numbers& ofEachFurther() const { return m_further; }

    /// The archive with so many copies, as text.
    QByteArray text(std::size_t copies) const;

private:
    friend class Recorder;

    /// Text, and a number behind it that grows by `step` with each copy.
    struct Piece {
        QByteArray text;
        bool hasNumber = false;
        long long number = 0;
        long long step = 0;
    };
    /// Pieces that are written once, with the number of the last copy, or once for each further copy.
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

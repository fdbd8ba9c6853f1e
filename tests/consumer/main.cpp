#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Archive/Archive.h"
#include "MTime/MTime.h"
#include "Reader/AdaptorTable.h"
#include "Util/XmlToJsonAdaptor.h"

#include <QDomDocument>

#include <cstdio>

int main() {
    QDomDocument document;
    document.setContent(QByteArray("<Archive><RootRef type='ObjectRef' value='2'/>"
                                   "<RootObject type='Timeline::Clip' objectId='2'/></Archive>"));
    Project::V28_ClipLabelAdaptor().adapt(document);
    QString plain = "a literal"; // an embedding project may use Qt as it likes
    QDomElement clip = Archive::findRootObject(document, 2);
    clip.appendChild(Archive::createMTime(document, plain.left(1), MTime::fromMs(40)));
    const auto json = Util::XmlToJsonAdaptor().adapt(document);
    const bool works =
        json["data"]["labels"].empty() && json["data"]["a"] == 40 && !Reader::adaptorTable().empty();
    std::puts(works ? "embedding works" : "embedding fails");
    return works ? 0 : 1;
}

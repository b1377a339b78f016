#include "lumenta/materials/MaterialXml.h"

#include "lumenta/files/WholeFile.h"
#include "lumenta/foundation/Exceptions.h"

#include <QBuffer>
#include <QDomDocument>
#include <QXmlDefaultHandler>
#include <QXmlSimpleReader>

namespace {

constexpr int kDeepest = 1000;
constexpr int kLongestDocumentType = 1000;
constexpr int kMostReferences = 20;

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED // QDomDocument uses this reader still, so another would scout another language

/// Reads a document in advance, as the toolkit's reader does but keeping
/// nothing, to find out whether it can be read within bounds.
///
/// That reader calls itself for each level of elements, and of brackets in a
/// document type, until the stack ends. It keeps what an entity stands for short,
/// but counts neither entities nor references, and looks at all of the former
/// for each new one.
class Scout : public QXmlInputSource, public QXmlDefaultHandler {
public:
    explicit Scout(QIODevice* pDevice) : QXmlInputSource(pDevice) {}

    bool StaysWithinBounds()
    {
        QXmlSimpleReader reader;
        reader.setContentHandler(this);
        reader.setLexicalHandler(this);
        reader.setDeclHandler(this);
        reader.parse(this); // whether it is well-formed is not asked here
        return m_isWithin;
    }

    /// Characters of the document itself; what entities stand for does not pass here.
    QChar next() override
    {
        const QChar character = QXmlInputSource::next();
        if (m_isInDocumentType && ++m_documentTypeLength > kLongestDocumentType) m_isWithin = false;
        if (m_hasDocumentType && character == QLatin1Char('&')) // also in what an entity, declared later, stands for
            ++m_references;
        if (m_declaresEntities && m_references > kMostReferences) m_isWithin = false;
        return m_isWithin ? character : QChar(EndOfDocument);
    }

    bool startElement(const QString&, const QString&, const QString&, const QXmlAttributes&) override
    {
        m_isWithin = m_isWithin && ++m_depth <= kDeepest;
        return m_isWithin;
    }

    bool endElement(const QString&, const QString&, const QString&) override
    {
        --m_depth;
        return true;
    }

    bool startDTD(const QString&, const QString&, const QString&) override
    {
        m_hasDocumentType = m_isInDocumentType = true;
        return true;
    }

    bool endDTD() override
    {
        m_isInDocumentType = false;
        return true;
    }

    bool internalEntityDecl(const QString&, const QString&) override
    {
        m_declaresEntities = true;
        return true;
    }

private:
    int m_depth = 0;
    int m_documentTypeLength = 0;
    int m_references = 0;
    bool m_hasDocumentType = false;
    bool m_isInDocumentType = false;
    bool m_declaresEntities = false;
    bool m_isWithin = true;
};

QT_WARNING_POP

bool CanBeRead(const QByteArray& xml)
{
    QBuffer buffer;
    buffer.setData(xml);
    return Scout(&buffer).StaysWithinBounds();
}

[[noreturn]] void Refuse(const QString& details)
{
    throw InvalidParameterException(QStringLiteral("ReadMaterial"), QStringLiteral("xml"), details);
}

QDomDocument Parse(const QByteArray& xml)
{
    QDomDocument document;
    if (!CanBeRead(xml) || !document.setContent(xml, false))
        Refuse(QStringLiteral("Can't parse XML material description"));
    return document;
}

void ReadParameter(const QDomNode& node, QMap<QString, QVariant>& parameters)
{
    if (node.nodeName() != QLatin1String("parameter"))
        Refuse(QStringLiteral("Invalid material format: unsupported node '%1'").arg(node.nodeName()));
    const QDomElement element = node.toElement(); // null, without attributes, for what only bears the name
    if (!element.hasAttribute(QStringLiteral("name")) || !element.hasAttribute(QStringLiteral("value")))
        Refuse(QStringLiteral("Invalid material format: 'parameter' node doesn't have necessary attributes"));

    const QString key = element.attribute(QStringLiteral("name"));
    const QVariant text = element.attribute(QStringLiteral("value"));
    const auto earlier = parameters.constFind(key);
    if (earlier != parameters.constEnd() && *earlier == text)
        Refuse(QStringLiteral("Material tag contain double child tags"));
    parameters.insert(key, text);
}

} // namespace

QByteArray MaterialToXml(const QString& name, const QMap<QString, QVariant>& parameters)
{
    QDomDocument document;
    document.insertBefore(
        document.createProcessingInstruction(QStringLiteral("xml"), QStringLiteral("version=\"1.0\" ")),
        document.firstChild());
    QDomElement material = document.createElement(QStringLiteral("material"));
    document.appendChild(material);
    material.setAttribute(QStringLiteral("version"), QStringLiteral("1"));
    material.setAttribute(QStringLiteral("name"), name);
    for (auto entry = parameters.cbegin(); entry != parameters.cend(); ++entry) {
        QDomElement parameter = document.createElement(QStringLiteral("parameter"));
        material.appendChild(parameter);
        parameter.setAttribute(QStringLiteral("name"), entry.key());
        parameter.setAttribute(QStringLiteral("value"), entry.value().toString());
    }
    return document.toByteArray(1);
}

void ReadMaterial(const QByteArray& xml, QString& name, QMap<QString, QVariant>& parameters)
{
    const QDomDocument document = Parse(xml); // nodes do not keep it alive
    const QDomElement material = document.elementsByTagName(QStringLiteral("material")).at(0).toElement();
    if (material.isNull())
        Refuse(QStringLiteral("Invalid material format: bad root node"));
    if (material.attribute(QStringLiteral("version")).toInt() != 1)
        Refuse(QStringLiteral("Unsupported or missing version"));
    if (!material.hasAttribute(QStringLiteral("name")))
        Refuse(QStringLiteral("Invalid material format: can't find 'material.name'"));
    name = material.attribute(QStringLiteral("name"));

    const QDomNode first = material.firstChild();
    if (first.isNull() || (first.nextSibling().isNull() && first.nodeName().isEmpty()))
        Refuse(QStringLiteral("Material tag not contain any child tags"));
    for (QDomNode node = first; !node.isNull(); node = node.nextSibling())
        ReadParameter(node, parameters);
}

QMap<QString, QVariant> GetDefaultMaterial(const QString& fileName)
{
    QString name;
    QMap<QString, QVariant> parameters;
    ReadMaterial(ReadAllFile(fileName), name, parameters);
    return parameters;
}

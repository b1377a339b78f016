#include "lumenta/foundation/Exceptions.h"

// One arg() per value, in the order of the placeholders. The form that takes
// several values at once would treat a "%1" inside a value differently.

Exception::Exception(const QString& text)
    : m_strText(text)
{
}

QString Exception::GetErrorText() const
{
    return m_strText;
}

ExporterException::ExporterException(const QString& text) : Exception(text) {}

LoadingException::LoadingException(const QString& text) : Exception(text) {}

SavingException::SavingException(const QString& text) : Exception(text) {}

CastException::CastException(const QString& text) : Exception(text) {}

ImageFormatException::ImageFormatException(const QString& text) : Exception(text) {}

UnsupportedFormatException::UnsupportedFormatException(const QString& text) : Exception(text) {}

LogicException::LogicException(const QString& text) : Exception(text) {}

OutOfMemoryException::OutOfMemoryException(const QString& text) : Exception(text) {}

OutOfMemoryException::OutOfMemoryException(const QString& text, unsigned long bytes)
    : Exception(QStringLiteral("%1\nAttempted to allocate %2 bytes")
                    .arg(text)
                    .arg(static_cast<qulonglong>(bytes)))
{
}

// Parts are filled in one by one: what looks like a number in a part is filled, too.

FileException::FileException(const QString& fileName, const QString& text)
    : Exception(QStringLiteral("%1\nFile: %2").arg(text).arg(fileName)) // clazy:exclude=qstring-arg
    , m_strFileName(fileName)
{
}

QString FileException::GetFileName() const
{
    return m_strFileName;
}

FactoryException::FactoryException(const QString& typeName)
    : Exception(QStringLiteral("Can't create object of type %1").arg(typeName))
{
}

ObjectLoadingException::ObjectLoadingException(const QString& objectName, const QString& details)
    : LoadingException(
        QStringLiteral("Error loading object '%1':\n%2").arg(objectName).arg(details)) // clazy:exclude=qstring-arg
{
}

namespace {

QString InvalidParameterText(const QString& method, const QString& parameter, const QString& details)
{
    const QString text = QStringLiteral("Invalid parameter '%1' passed to method '%2':\n%3");
    return text.arg(parameter).arg(method).arg(details); // clazy:exclude=qstring-arg
}

} // namespace

InvalidParameterException::InvalidParameterException(const QString& method, const QString& parameter,
                                                     const QString& details)
    : Exception(InvalidParameterText(method, parameter, details))
{
}

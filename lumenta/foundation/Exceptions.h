#pragma once

#include "lumenta/Export.h"

#include <QString>

/// \file
/// What a module cannot do, it says with one of these. Throw a temporary, catch
/// a const reference. What a handler gets is a text that can be shown to a
/// person.
///
/// The classes are exported, so a handler catches by class whichever library
/// threw. They have nothing in common with std::exception: a
/// `catch (const std::exception&)` does not see them.

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// The root. Shows its text unchanged.
///
/// The destructor is not virtual and must stay so: objects live and die through
/// their exact type, and the virtual table is part of the binary contract.
/// Never delete one through a pointer to a base.
class LUMENTA_EXPORT Exception {
public:
    /// \param text for a person, shown as it is
    explicit Exception(const QString& text);

    /// The message, ready to be shown.
    virtual QString GetErrorText() const;

private:
    QString m_strText;
};

/// An exporter could not write its format.
class LUMENTA_EXPORT ExporterException : public Exception {
public:
    explicit ExporterException(const QString& text); ///< Shows `text`.
};

/// A file was found and read, but what it holds could not be loaded.
class LUMENTA_EXPORT LoadingException : public Exception {
public:
    explicit LoadingException(const QString& text); ///< Shows `text`.
};

/// A document could not be saved.
class LUMENTA_EXPORT SavingException : public Exception {
public:
    explicit SavingException(const QString& text); ///< Shows `text`.
};

/// An object is not of the class that was asked for.
class LUMENTA_EXPORT CastException : public Exception {
public:
    explicit CastException(const QString& text); ///< Shows `text`.
};

/// An image is of no format that anyone here reads or writes.
class LUMENTA_EXPORT ImageFormatException : public Exception {
public:
    explicit ImageFormatException(const QString& text); ///< Shows `text`.
};

/// A file is of no format that anyone here reads or writes.
class LUMENTA_EXPORT UnsupportedFormatException : public Exception {
public:
    explicit UnsupportedFormatException(const QString& text); ///< Shows `text`.
};

/// The program contradicts itself.
class LUMENTA_EXPORT LogicException : public Exception {
public:
    explicit LogicException(const QString& text); ///< Shows `text`.
};

/// Memory ran out, while doing what the text says.
class LUMENTA_EXPORT OutOfMemoryException : public Exception {
public:
    explicit OutOfMemoryException(const QString& text); ///< Shows `text`.

    /// Shows "<text>\nAttempted to allocate <bytes> bytes".
    OutOfMemoryException(const QString& text, unsigned long bytes);
};

/// A file could not be opened, read or written.
class LUMENTA_EXPORT FileException : public Exception {
public:
    /// Shows "<text>\nFile: <fileName>". Mind the order: the file comes first
    /// here and last in the message.
    FileException(const QString& fileName, const QString& text);

    /// The file name as it was given, not normalised.
    virtual QString GetFileName() const;

private:
    QString m_strFileName;
};

/// A factory knows no such type.
class LUMENTA_EXPORT FactoryException : public Exception {
public:
    /// Shows "Can't create object of type <typeName>".
    explicit FactoryException(const QString& typeName);
};

/// One object of a document could not be loaded.
class LUMENTA_EXPORT ObjectLoadingException : public LoadingException {
public:
    /// Shows "Error loading object '<objectName>':\n<details>".
    ObjectLoadingException(const QString& objectName, const QString& details);
};

/// A caller passed what a method cannot take.
class LUMENTA_EXPORT InvalidParameterException : public Exception {
public:
    /// Shows "Invalid parameter '<parameter>' passed to method '<method>':\n<details>".
    /// Mind the order: the method comes first here and second in the message.
    InvalidParameterException(const QString& method, const QString& parameter, const QString& details);
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

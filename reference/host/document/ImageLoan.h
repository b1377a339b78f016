#pragma once

#include <QPointer>
#include <QString>

class IImage;
class IImageManager;

namespace Host {

/// One asking for an image at its manager, which is told at the end that the
/// image is no longer needed, if both are still there then.
class ImageLoan {
public:
    /// Of nothing.
    ImageLoan();
    /// Of nothing, too, where there is no such file.
    /// \throws whatever the manager throws
    ImageLoan(IImageManager& manager, const QString& fileName);
    ImageLoan(ImageLoan&& other) noexcept;
    ImageLoan& operator=(ImageLoan&& other) noexcept;
    ~ImageLoan();

    /// Null for nothing, and once it has ended.
    IImage* Image() const;

    /// Asks for the same image once more; of nothing where the manager has
    /// another one under its name by now.
    ImageLoan Again() const;

private:
    QPointer<IImageManager> m_pManager;
    QPointer<IImage> m_pImage;
};

} // namespace Host

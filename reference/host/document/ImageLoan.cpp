#include "reference/host/document/ImageLoan.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/interfaces/IImage.h"
#include "lumenta/interfaces/IImageManager.h"

#include <utility>

namespace Host {

ImageLoan::ImageLoan() = default;

ImageLoan::ImageLoan(IImageManager& manager, const QString& fileName)
    : m_pManager(&manager)
    , m_pImage(manager.LoadImageFile(fileName))
{
}

ImageLoan::ImageLoan(ImageLoan&& other) noexcept
{
    *this = std::move(other);
}

ImageLoan& ImageLoan::operator=(ImageLoan&& other) noexcept
{
    std::swap(m_pManager, other.m_pManager);
    std::swap(m_pImage, other.m_pImage);
    return *this;
}

ImageLoan::~ImageLoan()
{
    if (m_pManager && m_pImage) m_pManager->ReleaseImage(m_pImage);
}

IImage* ImageLoan::Image() const
{
    return m_pImage;
}

ImageLoan ImageLoan::Again() const
{
    if (!m_pManager || !m_pImage) return {};
    try {
        ImageLoan loan(*m_pManager, m_pImage->GetFileName());
        return loan.m_pImage == m_pImage ? std::move(loan) : ImageLoan();
    } catch (const Exception&) {
        return {}; // its file has changed
    }
}

} // namespace Host

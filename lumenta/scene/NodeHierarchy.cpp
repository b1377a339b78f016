#include "lumenta/scene/NodeHierarchy.h"

#include "lumenta/foundation/Exceptions.h"
#include "lumenta/foundation/Matrix.h"
#include "lumenta/interfaces/INode.h"
#include "lumenta/scene/NodeNumbers.h"

#include <algorithm>

namespace {

/// What is under some nodes, in flat arrays: each node once, by number, and the
/// numbers of its children.
///
/// Nodes are asked for their children level by level. Pre-order would wait for
/// one node after the other to come from memory; in a level the next ones are
/// known, and are fetched while others are asked.
class Survey {
public:
    using Number = std::uint32_t;

    /// \param expected nodes; more may come
    Survey(const std::vector<INode*>& tops, std::size_t expected)
        : m_numbers(expected)
    {
        for (INode* const top : tops)
            NumberOf(top);
        m_topCount = m_nodes.size();
        for (std::size_t i = 0; i < m_nodes.size(); ++i) {
            AskAhead(i);
            m_firstChild.push_back(static_cast<Number>(m_children.size()));
            for (INode* const child : *m_lists[i])
                m_children.push_back(NumberOf(child));
        }
        m_firstChild.push_back(static_cast<Number>(m_children.size()));
    }

    /// By number.
    const std::vector<INode*>& GetNodes() const { return m_nodes; }

    /// Null for a node that was not met.
    const Number* Find(const INode* node) const { return m_numbers.Find(node); }

    /// Visits each top and what is under it in pre-order, by number. `visit` tells
    /// whether to go on to the children of the node that it was given.
    template <typename Visit>
    void Walk(const Visit& visit) const
    {
        std::vector<Number> pending;
        for (std::size_t top = 0; top < m_topCount; ++top) {
            pending.push_back(static_cast<Number>(top));
            while (!pending.empty()) {
                const Number node = pending.back();
                pending.pop_back();
                if (!visit(node))
                    continue;
                for (Number child = m_firstChild[node + 1]; child > m_firstChild[node]; --child)
                    pending.push_back(m_children[child - 1]);
            }
        }
    }

private:
    // How far ahead a node is fetched, asked for its list, and the list's entries are fetched.
    static constexpr std::size_t kFetched = 16, kAsked = 8, kListed = 4;

    Number NumberOf(INode* node)
    {
        const auto next = static_cast<Number>(m_nodes.size());
        const Number number = m_numbers.Insert(node, next);
        if (number == next)
            m_nodes.push_back(node);
        return number;
    }

    void AskAhead(std::size_t i)
    {
        if (i + kFetched < m_nodes.size())
            __builtin_prefetch(m_nodes[i + kFetched]);
        for (const std::size_t end = std::min(i + kAsked, m_nodes.size()); m_lists.size() < end;) {
            m_lists.push_back(&m_nodes[m_lists.size()]->GetChildren());
            __builtin_prefetch(m_lists.back());
        }
        if (i + kListed < m_lists.size())
            __builtin_prefetch(m_lists[i + kListed]->data());
    }

    NodeNumbers m_numbers;
    std::vector<INode*> m_nodes;
    std::vector<const std::vector<INode*>*> m_lists; ///< Of the nodes asked so far.
    std::vector<Number> m_children;                  ///< Of one node after the other.
    std::vector<Number> m_firstChild;                ///< Where those of a node begin; and their end.
    std::size_t m_topCount = 0;
};

} // namespace

void GetNodeGlobalMatrix(Matrix& result, const INode* pNode)
{
    if (!pNode) {
        result.SetIdentity();
        return;
    }
    result = pNode->GetMatrix();
    for (const INode* ancestor = pNode->GetParent(); ancestor; ancestor = ancestor->GetParent())
        Multiply(result, result, ancestor->GetMatrix());
}

int GetNodePos(const INode* pNode)
{
    const auto refuse = [](const QString& details) {
        return InvalidParameterException(QStringLiteral("GetNodePos()"), QStringLiteral("pNode"), details);
    };
    if (!pNode)
        throw refuse(QStringLiteral("pNode is NULL"));
    const INode* const parent = pNode->GetParent();
    if (!parent)
        throw refuse(QStringLiteral("pNode has no parent (removed?)"));

    const std::vector<INode*>& siblings = parent->GetChildren();
    const auto found = std::find(siblings.begin(), siblings.end(), pNode);
    if (found == siblings.end())
        throw LogicException(QStringLiteral("GetNodePos: can't find node in its siblings"));
    return static_cast<int>(found - siblings.begin());
}

INode* GetNextSibling(const INode* pNode)
{
    const std::vector<INode*>& siblings = pNode->GetParent()->GetChildren();
    const auto found = std::find(siblings.begin(), siblings.end(), pNode);
    return found == siblings.end() || found + 1 == siblings.end() ? nullptr : *(found + 1);
}

INode* GetFirstChild(const INode* pNode)
{
    const std::vector<INode*>& children = pNode->GetChildren();
    return children.empty() ? nullptr : children.front();
}

std::vector<INode*> CollectAllChildren(const std::vector<INode*>& nodes)
{
    const Survey survey(nodes, nodes.size());
    std::vector<bool> listed(survey.GetNodes().size());
    std::vector<INode*> list;
    list.reserve(survey.GetNodes().size());
    survey.Walk([&](Survey::Number node) {
        // A node that is listed has been walked through, and everything under it is
        // listed, too: only in a cycle can one be met before its walk has ended.
        if (listed[node])
            return false;
        listed[node] = true;
        list.push_back(survey.GetNodes()[node]);
        return true;
    });
    return list;
}

std::vector<INode*> SortAccordingToTheSceneTree(const std::vector<INode*>& nodes, INode* pRoot, bool reverse)
{
    if (nodes.size() < 2)
        return nodes;

    const Survey survey({pRoot}, nodes.size());
    // Counted, because a node that is listed twice and hangs twice in a tree comes out twice.
    std::vector<std::size_t> pending(survey.GetNodes().size());
    for (const INode* const node : nodes)
        if (const Survey::Number* const number = survey.Find(node))
            ++pending[*number];

    std::vector<INode*> result;
    survey.Walk([&](Survey::Number node) {
        if (pending[node] > 0) {
            result.push_back(survey.GetNodes()[node]);
            --pending[node];
        }
        return true;
    });
    if (reverse)
        std::reverse(result.begin(), result.end());
    return result;
}

std::vector<INode*> MakeListOfNodes(INode* a)
{
    return {a};
}

std::vector<INode*> MakeListOfNodes(INode* a, INode* b)
{
    return {a, b};
}

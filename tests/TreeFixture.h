// TreeFixture.h -- a preset with controls of any names, its tree, and a second tree that only listens to the first one
#pragma once

#include "tests/EngineFixture.h"

#include "controls/ControlManager.h"
#include "editing/PresetTree.h"

#include <map>
#include <memory>

// Follows a tree by its news alone, the way a view's model does, and complains about news that contradict each other.
struct TreeMirror {
    explicit TreeMirror(PresetTree *p) : pTree(p)
    {
        pTree->TreeListeners.Add(Hear, this);
        CopyAll();
    }
    ~TreeMirror()
    {
        pTree->TreeListeners.Remove(Hear, this);
    }

    static void Hear(const TreeNews &news, void *pv)
    {
        static_cast<TreeMirror *>(pv)->Take(news);
    }
    void Take(const TreeNews &news)
    {
        nNews++;
        if (news.eKind >= TreeNewsKind::Changed)
            return;
        const bool bEnds = static_cast<u32>(news.eKind) % 2;
        EXPECT_EQ(bEnds, bOpen) << "an -ing without its -ed, or the other way round";
        bOpen = !bEnds;
        if (!bEnds) {
            Open = news;
            return;
        }
        EXPECT_EQ(Open.pNode, news.pNode);
        EXPECT_EQ(Open.nRow, news.nRow);
        switch (news.eKind) {
        case TreeNewsKind::Reset:
            return CopyAll();
        case TreeNewsKind::Inserted:
            Copy(news.pNode);
            return Put(news.pParent, news.nRow, news.pNode);
        case TreeNewsKind::Removed:
            return TakeOut(news);
        case TreeNewsKind::Moved:
            TakeOut(news);
            return Put(news.pTo, news.pTo == news.pParent && news.nRow < news.nTo ? news.nTo - 1 : news.nTo,
                       news.pNode);
        default:
            return;
        }
    }
    void Put(TreeNode *pParent, u32 nRow, TreeNode *pNode)
    {
        ASSERT_LE(nRow, Children[pParent].size());
        Children[pParent].insert(Children[pParent].begin() + nRow, pNode);
    }
    void TakeOut(const TreeNews &news)
    {
        auto &apChild = Children[news.pParent];
        ASSERT_LT(news.nRow, apChild.size());
        EXPECT_EQ(apChild[news.nRow], news.pNode);
        apChild.erase(apChild.begin() + news.nRow);
    }
    void Copy(TreeNode *pNode)
    {
        Children[pNode] = pNode->apChild;
        for (TreeNode *pChild : pNode->apChild)
            Copy(pChild);
    }
    void CopyAll()
    {
        Children.clear();
        if (pTree->pRoot)
            Copy(pTree->pRoot);
    }

    PresetTree *pTree;
    std::map<TreeNode *, std::vector<TreeNode *>> Children;
    TreeNews Open = {};
    bool bOpen = false;
    u32 nNews = 0;
};

class TreeTest : public EngineTest {
  protected:
    // A list of components; a 0 inside ends the list early.
    using Name = std::vector<std::u16string>;

    static void WriteName(ControlRecord *pctl, const Name &name)
    {
        char16_t *psz = pctl->Base.szName;
        std::fill_n(psz, CONTROL_TEXT, u'\0');
        for (const std::u16string &part : name)
            psz = std::copy(part.begin(), part.end(), psz) + 1;
    }
    static void MakeFloat(ControlRecord *pctl)
    {
        pctl->Base.dwType = CONTROLTYPE_FLOAT;
        pctl->Float = {0, 1, 0, 1, 0, 1, 0.5f, 0.5f, 0};
    }
    // Gives a module that declared none these float controls.
    static void GiveControls(ModuleSlot *pms, const std::vector<Name> &names)
    {
        BeginControls(pms);
        i32 n = 0;
        for (const Name &name : names) {
            ControlRecord *pctl = AllocControl(&n);
            WriteName(pctl, name);
            MakeFloat(pctl);
        }
        EndControls(pms);
    }
    // A preset of one plane whose only module has these controls.
    ModuleSlot *MakeControls(const std::vector<Name> &names)
    {
        MakePreset(1);
        ModuleSlot *pms = Add(MODULEINDEX_DRAWFULL, 0, u"Idle.dll");
        GiveControls(pms, names);
        BuildPresetTree(tree, lppsi);
        return pms;
    }
    TreeNode *NodeOf(const void *pObject) const
    {
        return FindNodeByObject(tree, nullptr, pObject);
    }
    TreeNode *ListNode(u32 dwListType, u32 nPlane = 0) const
    {
        const TreeNode *pPlane = NthPlaneNode(tree, nPlane);
        for (const TreeNode *pCategory : pPlane->apChild)
            if (TreeNode *pList = ChildOfType(pCategory, dwListType))
                return pList;
        return nullptr;
    }

    // "Text(Child Child(Grandchild))"
    static std::string Outline(const TreeNode *pNode)
    {
        if (!pNode)
            return "none";
        std::string s = ToUtf8(pNode->sText);
        for (size_t i = 0; i < pNode->apChild.size(); i++)
            s += (i ? ", " : "(") + Outline(pNode->apChild[i]);
        return pNode->apChild.empty() ? s : s + ")";
    }
    static std::vector<TreeNode *> AllNodes(TreeNode *pNode)
    {
        std::vector<TreeNode *> ap;
        if (!pNode)
            return ap;
        ap.push_back(pNode);
        for (TreeNode *pChild : pNode->apChild)
            for (TreeNode *p : AllNodes(pChild))
                ap.push_back(p);
        return ap;
    }
    // Every link says the same as its counterpart, and the mirror saw all of it.
    void CheckTree()
    {
        const auto apNode = AllNodes(tree.pRoot);
        for (const TreeNode *pNode : apNode) {
            EXPECT_EQ(pNode->Info.hItem, pNode);
            EXPECT_EQ(pNode->Info.hTree, &tree);
            for (u32 i = 0; i < pNode->apChild.size(); i++) {
                EXPECT_EQ(pNode->apChild[i]->pParent, pNode);
                EXPECT_EQ(pNode->apChild[i]->nRow, i);
            }
            EXPECT_EQ(Mirror.Children[const_cast<TreeNode *>(pNode)], pNode->apChild) << ToUtf8(pNode->sText);
        }
        EXPECT_FALSE(Mirror.bOpen);
    }

    PresetTree tree;
    TreeMirror Mirror{&tree};
};

#include "language/PhotographyQuotes.h"

#include <array>

#include <QRandomGenerator>

namespace tarnovel {

namespace {

struct Author {
    const char *zh;
    const char *latin;
};

constexpr Author parr{"马丁·帕尔", "Martin Parr"};
constexpr Author capa{"罗伯特·卡帕", "Robert Capa"};
constexpr Author cartierBresson{"亨利·卡蒂埃-布列松", "Henri Cartier-Bresson"};
constexpr Author adams{"安塞尔·亚当斯", "Ansel Adams"};
constexpr Author lange{"多萝西娅·兰格", "Dorothea Lange"};
constexpr Author winogrand{"加里·维诺格兰德", "Garry Winogrand"};
constexpr Author erwitt{"埃利奥特·厄威特", "Elliott Erwitt"};
constexpr Author frank{"罗伯特·弗兰克", "Robert Frank"};
constexpr Author arbus{"黛安·阿勃丝", "Diane Arbus"};
constexpr Author avedon{"理查德·阿维顿", "Richard Avedon"};
constexpr Author abbott{"贝伦尼斯·阿博特", "Berenice Abbott"};
constexpr Author eggleston{"威廉·埃格尔斯顿", "William Eggleston"};
constexpr Author evans{"沃克·埃文斯", "Walker Evans"};
constexpr Author weegee{"维吉", "Weegee"};

constexpr PhotographyQuote by(const Author &author, const char *id, const char *zh, const char *en,
                              const char *fr)
{
    return {id, zh, en, author.zh, author.latin, fr};
}

// U+202F, the narrow no-break space that French sets before high punctuation, is written as an escape so that
// it can be told from a blank.
constexpr std::array quotes{
    by(parr, "parr-obsession",
       "找到你热爱的东西，带着这份痴迷优雅地一路拍下去，你就有可能拍出一组了不起的作品。",
       "Find something you are passionate about, and shoot your way through this obsession with elegance and "
       "you will have a potential great project.",
       "Trouvez ce qui vous passionne, photographiez avec élégance jusqu’au bout de cette obsession, et vous "
       "tiendrez peut-être un grand projet."),
    by(capa, "capa-closer", "如果你的照片拍得不够好，那是因为你靠得不够近。",
       "If your pictures aren't good enough, you're not close enough.",
       "Si vos photos ne sont pas assez bonnes, c’est que vous n’êtes pas assez près."),
    by(cartierBresson, "cartier-bresson-recognition",
       "摄影，是在几分之一秒之内，同时辨认出一个事件的意义与各种形式的组织。",
       "Photography is the simultaneous recognition, in a fraction of a second, of the significance of an "
       "event and the organization of forms.",
       "La photographie est la reconnaissance simultanée, en une fraction de seconde, de la signification "
       "d’un événement et de l’organisation des formes."),
    by(cartierBresson, "cartier-bresson-looking", "摄影对我来说从来不是问题；重要的是观看，而不是摄影。",
       "Photography has never been a problem for me; it is looking that's important, not photography.",
       "La photographie n’a jamais été un problème pour moi\u202f; ce qui compte, c’est le regard, pas la "
       "photographie."),
    by(cartierBresson, "cartier-bresson-curiosity",
       "对摄影师来说，好奇心不可或缺；而它可怕的另一面，是冒昧。",
       "For the photographer, curiosity is essential; the terrible counterpart is indiscretion.",
       "Pour le photographe, la curiosité est essentielle\u202f; sa terrible contrepartie est "
       "l’indiscrétion."),
    by(adams, "adams-make-it", "照片不是拍下来的，而是创造出来的。",
       "You don't take a photograph, you make it.", "On ne prend pas une photographie, on la fait."),
    by(adams, "adams-minds-eye", "如果脑海中浮现的画面让我兴奋，它就很有可能成为一张好照片。",
       "If what I see in my mind excites me, there is a good chance it will make a good photograph.",
       "Si ce que je vois en esprit m’enthousiasme, il y a de bonnes chances que cela fasse une bonne "
       "photographie."),
    by(adams, "adams-two-people", "每张照片里总有两个人：摄影师和观看者。",
       "There are always two people in every picture: the photographer and the viewer.",
       "Il y a toujours deux personnes dans une image\u202f: le photographe et celui qui la regarde."),
    by(adams, "adams-score", "底片好比作曲家的乐谱，放印则是演奏。",
       "The negative is like the composer's score. The print is the performance.",
       "Le négatif est comme la partition du compositeur. Le tirage en est l’interprétation."),
    by(lange, "lange-instrument", "相机是一件工具，它教会人们不用相机去看。",
       "The camera is an instrument that teaches people how to see without a camera.",
       "L’appareil photo est un instrument qui apprend à voir sans appareil photo."),
    by(lange, "lange-blind", "使用相机时，真该像明天就要失明一样。",
       "One should really use the camera as though tomorrow you'd be stricken blind.",
       "On devrait vraiment se servir de son appareil photo comme si l’on devait perdre la vue demain."),
    by(lange, "lange-instant", "摄影从时间中取出一个瞬间，让生命静止，从而改变了它。",
       "Photography takes an instant out of time, altering life by holding it still.",
       "La photographie extrait un instant du temps et change la vie en l’immobilisant."),
    by(winogrand, "winogrand-photographed", "我拍照，是为了看看事物被拍下来是什么样子。",
       "I photograph to see what things look like photographed.",
       "Je photographie pour voir à quoi ressemblent les choses une fois photographiées."),
    by(winogrand, "winogrand-different", "人们不明白，照片与现实完全不同。",
       "People don't understand that a photograph is completely different from reality.",
       "Les gens ne comprennent pas qu’une photographie est tout autre chose que la réalité."),
    by(winogrand, "winogrand-more-interesting", "照片应该比现实本身更有意思。",
       "The photograph should be more interesting than reality itself.",
       "La photographie devrait être plus intéressante que la réalité elle-même."),
    by(erwitt, "erwitt-observation", "在我看来，摄影是一门观察的艺术。",
       "To me, photography is an art of observation.",
       "Pour moi, la photographie est un art de l’observation."),
    by(erwitt, "erwitt-at-home", "坐在家里，什么也不会发生。", "Nothing happens when you sit at home.",
       "Rien n’arrive quand on reste assis chez soi."),
    by(erwitt, "erwitt-simple-act", "拍照是一件非常简单的事，没有什么了不起的秘诀。",
       "Making pictures is a very simple act. There are no great secrets.",
       "Faire des images est un acte très simple. Il n’y a pas de grands secrets."),
    by(frank, "frank-humanity", "照片必须包含一样东西，那就是瞬间的人性。",
       "There is one thing the photograph must contain, the humanity of the moment.",
       "Il est une chose que la photographie doit contenir\u202f: l’humanité de l’instant."),
    by(frank, "frank-poem", "我希望人们看我的照片时，感受就像想把一行诗再读一遍。",
       "When people look at my pictures, I want them to feel the way they do when they want to read a line "
       "of a poem twice.",
       "Quand on regarde mes images, je voudrais que l’on éprouve ce que l’on ressent devant un vers que "
       "l’on a envie de lire deux fois."),
    by(frank, "frank-indifference", "对摄影师来说，生活不可能是一件漠不关心的事。",
       "Life for a photographer cannot be a matter of indifference.",
       "La vie, pour un photographe, ne peut pas être affaire d’indifférence."),
    by(arbus, "arbus-secret", "照片是关于秘密的秘密。它告诉你的越多，你知道的就越少。",
       "A photograph is a secret about a secret. The more it tells you, the less you know.",
       "Une photographie est un secret sur un secret. Plus elle en dit, moins on en sait."),
    by(arbus, "arbus-never-been", "我最喜欢的，是去从未去过的地方。",
       "My favorite thing is to go where I've never been.",
       "Ce que je préfère, c’est aller là où je ne suis jamais allée."),
    by(arbus, "arbus-intended", "我从未拍出过预想中的照片，它们总是更好，或者更糟。",
       "I never have taken a picture I've intended. They're always better or worse.",
       "Je n’ai jamais fait la photo que je voulais faire. C’est toujours mieux, ou pire."),
    by(avedon, "avedon-accurate", "所有照片都是准确的，但没有一张是真相。",
       "All photographs are accurate. None of them is the truth.",
       "Toutes les photographies sont exactes. Aucune n’est la vérité."),
    by(avedon, "avedon-likeness", "肖像不等于相像。", "A portrait is not a likeness.",
       "Un portrait n’est pas une ressemblance."),
    by(abbott, "abbott-see", "摄影帮助人们看见。", "Photography helps people to see.",
       "La photographie aide les gens à voir."),
    by(eggleston, "eggleston-obvious", "我与显而易见的事物交战。", "I am at war with the obvious.",
       "Je suis en guerre contre l’évidence."),
    by(evans, "evans-stare", "凝视吧。这是训练眼睛的方法，而且不止于此。",
       "Stare. It is the way to educate your eye, and more.",
       "Regardez avec insistance. C’est ainsi que l’œil s’éduque, et plus encore."),
    by(weegee, "weegee-inhibitions", "我毫无顾忌，我的相机也一样。",
       "I have no inhibitions, and neither does my camera.",
       "Je n’ai aucune inhibition, et mon appareil photo non plus."),
};

} // namespace

QString PhotographyQuote::text(AppLanguage language) const
{
    return localized({zh, en, fr}, language);
}

QString PhotographyQuote::author(AppLanguage language) const
{
    return localized({zhAuthor, enAuthor, enAuthor}, language);
}

namespace PhotographyQuotes {

std::span<const PhotographyQuote> all()
{
    return quotes;
}

std::optional<PhotographyQuote> random()
{
    return quotes[QRandomGenerator::system()->bounded(static_cast<quint32>(quotes.size()))];
}

} // namespace PhotographyQuotes

} // namespace tarnovel

// SPDX-License-Identifier: MIT
#include "tools/import/stop_word_lists.h"

#include <array>

namespace mardle::tools {
namespace {

constexpr std::string_view kEnglish =
    // articles, pronouns, possessives
    "a an the i me my mine myself you your yours yourself yourselves he him his himself "
    "she her hers herself it its itself we us our ours ourselves they them their theirs themselves "
    "this that these those who whom whose which what whoever whatever whichever one ones "
    "someone something anyone anything everyone everything nobody nothing none "
    // forms of be, have, do; modal verbs
    "am is are was were be been being have has had having do does did done doing "
    "can could may might must shall should will would ought cannot "
    // prepositions
    "about above across after against along among around at before behind below beneath beside "
    "besides between beyond by down during except for from in inside into like near of off on onto "
    "out outside over per since through throughout till to toward towards under until up upon via "
    "with within without "
    // conjunctions
    "and or but nor so yet if unless because although though while whereas whether than as "
    // adverbs and determiners
    "not no yes only very too also just even still already again ever never always often "
    "here there where when why how then thus hence therefore however moreover "
    "all any both each every either neither few many more most much less least several some such "
    "other others another same own enough quite rather almost now once "
    // pieces of contractions
    "don doesn didn isn aren wasn weren hasn haven hadn won wouldn couldn shouldn mustn ain "
    "ll ve re";

constexpr std::string_view kDanish =
    "af alle alt anden andet andre at bare begge blev blive bliver da de dem den denne der "
    "deres derfor det dets dette dig din dine disse dit dog du efter eller en end ene eneste "
    "enhver er et far fem fik fire flere fleste for fordi forrige fra få får før god ham han "
    "hans har havde have hej helt hende hendes her hos hun hvad hvem hver hvilken hvis hvor "
    "hvordan hvorfor hvornår ikke ind ingen intet jeg jer jeres jo kan kom komme kommer kun "
    "kunne lad lav lidt lige lille man mand mange med meget mellem men mens mere mig min "
    "mindre mine mit mod må ned nede ni nogen noget nogle nok nu ny nyt når og også om op os "
    "otte over på se seks selv ser ses sig sin sine sit skal skulle som stor store så sådan "
    "tag tage thi ti til to tre ud uden under var ved vi vil ville vor vores være været";

constexpr std::string_view kDutch =
    "aan al alle alleen alles als altijd andere ben bent bij binnen daar dan dat de der deze "
    "die dit doch doen door dus een eens elk elke en er ergens geen geweest haar had hadden "
    "heb hebben hebt heeft hem het hier hij hoe hun iemand iets ik in is ja je jij jou jouw "
    "jullie kan kon konden kun kunnen maar me meer men met mij mijn moet moeten naar niet "
    "niets nog nu of om omdat ondanks ons onze ook op over reeds sinds te tegen toch toen tot "
    "u uit uw van vanaf veel voor waar waarom wanneer want waren was wat we wel welke werd "
    "werden wezen wie wij wil wilde worden wordt wou zal ze zei zelf zich zij zijn zo zoals "
    "zonder zou zouden zullen";

constexpr std::string_view kFrench =
    "ai aie aient ainsi alors après as assez au aucun aucune auquel aussi autre autres aux "
    "auxquels avait avant avec avez avoir avons ayant beaucoup bien car ce ceci cela celle "
    "celles celui cependant ces cet cette ceux chaque chez ci combien comme comment contre "
    "dans de dedans dehors depuis des desquels dessous dessus deux devant doit donc dont du "
    "duquel durant déjà elle elles en encore entre es est et eu eux faire fait fois font "
    "furent fut hors ici il ils jamais je jusqu jusque la laquelle le lequel les lesquelles "
    "lesquels leur leurs lors lorsqu lorsque lui là ma mais me mes mien moi moins mon même "
    "mêmes ne ni non nos notre nous nôtre on ont ou outre où par parce parmi pas pendant peu "
    "peut peuvent plus plusieurs pour pourquoi puis puisqu puisque qu quand que quel quelle "
    "quelles quelqu quelque quelques quels qui quoi quoique rien sa sans se selon sera seront "
    "ses si sien soi soit sommes son sont sous souvent suis sur ta tant te tel telle telles "
    "tels tes toi ton toujours tous tout toute toutes trop très tu un une vers vos votre vous "
    "vôtre y à étaient étais était étant été êtes être";

constexpr std::string_view kGerman =
    "aber alle allem allen aller alles als also am an ander andere anderem anderen anderer "
    "anderes anders auch auf aus außer bei beide beiden beim bereits bin bis bist da dabei "
    "dadurch dafür dagegen daher damit danach dann daran darauf daraus darf darin darum "
    "darunter darüber das dass dasselbe davon davor dazu daß dein deine deinem deinen deiner "
    "deines dem den denen denn dennoch der deren derselbe derselben des deshalb dessen desto "
    "dich die dies diese dieselbe dieselben diesem diesen dieser dieses dir doch dort du durch "
    "dürfen ebenso eher ein eine einem einen einer eines einig einige einigen einiger einiges "
    "einmal er erst es etwa etwas euch euer eure eurem euren eurer für gar gegen gehabt "
    "gewesen geworden hab habe haben hat hatte hatten hier hin hinter ich ihm ihn ihnen ihr "
    "ihre ihrem ihren ihrer ihres im immer in indem ins ist ja je jede jedem jeden jeder jedes "
    "jedoch jemand jene jenem jenen jener jenes jetzt kann kein keine keinem keinen keiner "
    "keines konnte konnten können könnte könnten man manche manchem manchen mancher manches "
    "mehr mein meine meinem meinen meiner meines mich mir mit muss musste mussten muß müssen "
    "nach nachdem nein nicht nichts noch nun nur ob oben oder ohne schon sehr sei seid sein "
    "seine seinem seinen seiner seines seit selbst sich sie sind so sobald sogar solche "
    "solchem solchen solcher solches soll sollen sollte sollten sondern sonst soweit sowie "
    "sowohl um und uns unser unsere unserem unseren unserer unter viel viele vielen vom von "
    "vor wann war waren warst warum was weder weg wegen weil weiter welche welchem welchen "
    "welcher welches wem wen wenig wenn wer werde werden werdet weshalb wie wieder will wir "
    "wird wirst wo wohl wollen wollte wollten womit worden wurde wurden während wäre wären "
    "würde würden zu zum zur zwar zwischen über";

constexpr std::string_view kItalian =
    "abbiamo ad agli ai al alcune alcuni alla alle allo allora altra altre altri altro anche "
    "ancora avere aveva avevano avuto che chi ci ciascuno cioè ciò coi col come con contro "
    "cosa così cui da dagli dai dal dalla dalle dallo degli dei del dell della delle dello "
    "dentro di dopo dove due dunque durante ebbe ed egli ella era erano essa esse essere essi "
    "esso fa fare fatto fino fra fu furono già gli ha hai hanno ho il in infatti invece io la "
    "le lei li lo loro lui ma me meno mentre mi mia mie miei mio molta molte molti molto ne "
    "negli nei nel nell nella nelle nello nessuno niente noi non nostra nostre nostri nostro "
    "nulla ogni oppure per perché perciò però più poco poi prima proprio può qual quale quali "
    "quando quanto quasi quei quell quella quelle quelli quello questa queste questi questo "
    "qui quindi sarà se sei sempre senza si sia siamo siano siete solo sono sopra sotto sta "
    "stata state stati stato stesso su sua sue sugli sui sul sulla sulle sullo suo suoi tra "
    "tua tue tuo tuoi tutta tutte tutti tutto un una uno vi voi vostra vostre vostri vostro è";

constexpr std::string_view kNorwegian =
    "alle at av bare begge ble blei bli blir blitt da de deg dei dem den denne der dere deres "
    "det dette di din disse ditt du eg ei ein eit eller en enn er et etter for fordi fra få "
    "før ha hadde han hans har hennar henne hennes her hjå ho hun hva hvem hver hvilke hvilken "
    "hvis hvor hvordan hvorfor i ikke ikkje ingen inn innen ja jeg kan kom kun kunne kva kven "
    "kvifor man mange me med medan meg meget mellom men mens mer mest min mine mitt mot mye må "
    "ned no noe noen noko nokon nokre nå når og også om opp oss over på samme seg selv si sia "
    "sidan siden sin sine sitt skal skulle slik som så sånn til um under upp ut uten var vart "
    "varte ved vere verte vi vil ville vore vors vort vår være vært å";

constexpr std::string_view kPortuguese =
    "acerca agora ainda algum alguma algumas alguns ali ambos antes ao aonde aos apenas apesar "
    "aquela aquelas aquele aqueles aqui aquilo as assim até bem cada com como contra contudo "
    "da daquele das de dela delas dele deles depois desde dessa desse desta deste do dos "
    "durante e ela elas ele eles em embora enquanto entre era eram essa essas esse esses esta "
    "estamos estar estas estava estavam este estes estou está estão eu faz fazer foi for foram "
    "fosse há isso isto já lhe lhes logo mais mas me mediante menos mesmo meu meus minha "
    "minhas muito muitos na nada nas nem nenhum nessa nesse nesta neste no nos nossa nossas "
    "nosso nossos num numa não nós onde os ou outra outras outro outros para pela pelas pelo "
    "pelos perante pois por porque porquê porém pouco pra primeiro própria próprio quais qual "
    "qualquer quando quanto quase que quem quer se seja sejam sem sempre sendo ser será serão "
    "seu seus si sido sob sobre somente sua suas são só tal também tanto te tem temos tendo "
    "ter teu teus teve tinha tinham toda todas todo todos tu tua tuas tudo têm um uma umas uns "
    "vai vez você vocês vos vós à às é";

constexpr std::string_view kRussian =
    "без более больше будет будто бы был была были было быть вам вас ваш ваша вдруг ведь во "
    "вот впрочем все всегда всего всех всю вы где да даже два для до другой его ее ей ему если "
    "есть еще ещё же за зачем здесь из или им иногда их как какая какой когда конечно которая "
    "которого которое которой котором которую которые который которых кто куда ли либо лучше "
    "между меня мне много может можно мой моя мы на над надо наконец нас наш не него нее ней "
    "нельзя нет ни нибудь никогда ним них ничего но ну об один она они оно опять от перед по "
    "под после потом потому почти при про раз разве сам свой свою себе себя сегодня сейчас со "
    "совсем так также такой там тебя тем теперь то тогда того тоже только том тот три тут ты "
    "уж уже хоть хотя чего чей чем через что чтоб чтобы чуть эта эти этих это этого этой этом "
    "этот эту";

constexpr std::string_view kSpanish =
    "actualmente además al algo alguien alguna algunas alguno algunos algún allí ambos ante "
    "antes aquel aquella aquellas aquello aquellos aquí así aun aunque aún bajo bastante bien "
    "cada casi como con conforme contra cual cuales cualquier cuando cuanto cuya cuyo cuál "
    "cuándo cómo de debe deben del demás dentro desde después donde dos durante dónde el ella "
    "ellas ello ellos en entonces entre era eran es esa esas ese eso esos esta estaba estaban "
    "estado estamos estar estas este esto estos estoy está están fin fue fueron ha haber había "
    "habían hace hacer hacia han hasta hay he hemos la las le les lo los luego me mediante "
    "menos mi mientras mis misma mismo mucha muchas mucho muchos muy más mí nada ni ninguna "
    "ninguno no nos nosotros nuestra nuestras nuestro nuestros nunca os otra otras otro otros "
    "para pero poca poco pocos por porque primero puede pueden pues que quien quienes quién "
    "qué se sea sean según ser será si sido siempre sin sino sobre solo son su sus suya suyo "
    "sí sólo tal también tampoco tan tanto te tener tenía ti tiene tienen toda todas todavía "
    "todo todos tras tu tus tú un una unas uno unos usted ustedes va vez vosotros y ya yo él";

constexpr std::string_view kSwedish =
    "alla allt alltid att av bara blev bli blir blivit bort de dem den denna deras dess dessa "
    "det detta dig din dina ditt dock dom du där därför då efter eftersom eller en ens er era "
    "ert ett fick finns fram från får för före genom ha hade han hans har henne hennes hon "
    "honom hos hur här i icke ifrån in inga ingen inget innan inte ja jag ju kan kom kommer "
    "kunde kunna man med medan mellan men mer mest mig min mina mitt mot mycket måste ned nej "
    "ni nog nu när någon något några och också om oss på redan samma samt sedan ser si sig sin "
    "sina sitt själv ska skall skulle som så sådan till tills ty under upp ur ut utan vad var "
    "vara varför varit varje vars vart vem vems vi vid vilka vilken vilket vill vår våra vårt "
    "än ännu är åt över";

constexpr std::string_view kChinese =
    "的 了 在 是 我 有 和 就 不 都 而 及 与 與 着 著 或 也 你 您 他 她 它 们 們 我们 我們 你们 "
    "你們 他们 他們 她们 这 這 那 这个 這個 那个 那個 这些 這些 那些 这里 那里 这样 那样 一个 "
    "一個 一些 一种 什么 什麼 怎么 怎麼 哪 哪个 谁 誰 吗 嗎 呢 吧 啊 呀 哦 把 被 对 對 从 從 "
    "到 向 往 于 於 以 以及 以后 以前 为 為 为了 因 因为 因為 由 由于 所以 所 但 但是 如 如果 "
    "如何 若 虽然 雖然 即 则 則 并 並 并且 而且 且 又 还 還 还是 再 才 只 很 更 最 太 已 已经 "
    "已經 正在 将 將 会 會 能 能够 可 可以 要 应 应该 需 需要 没 没有 沒有 无 無 非 其 其他 "
    "其中 之 之一 之后 之前 此 该 該 各 每 某 等 等等 时 時 个 個 上 下 中 里 裡 内 外 前 后 "
    "後 间 地 得 过 過 来 來 去 起 让 讓 给 給 用 使 使用 通过 進行 进行 关于 根据 按照 同时 "
    "或者 不是 就是 也是 都是";

constexpr std::string_view kJapanese =
    "の に は を た が で て と し れ さ も や か へ な ず だ この その あの どの これ それ "
    "あれ どれ ここ そこ あそこ どこ こと もの ため よう とき ところ ある いる する なる れる "
    "られる せる させる いう ない なく なけれ なかっ なかった あり あっ あった いた いて して "
    "した しない します しました ません ました です でした ます である であり であっ だっ "
    "だった から まで より など として について において における によって により による "
    "に対して に関する ので のに のみ では には とは にも でも とも へは ほど だけ しか ばかり "
    "また および および又 又 及び または あるいは さらに そして しかし ただし なお すべて 全て "
    "それぞれ 各 場合 できる でき できます られ なら ならば れば たら たり ながら つつ ほか 他 "
    "以下 以上 前 後 中 上 下 内 的 等 私 私たち 彼 彼女 何 誰 いつ なぜ どう そう こう ああ "
    "もう まだ とても もし";

constexpr std::array<StopWordList, 13> kLists = {{
    {"chinese", "zh", kChinese},
    {"danish", "da", kDanish},
    {"dutch", "nl", kDutch},
    {"english", "en", kEnglish},
    {"french", "fr", kFrench},
    {"german", "de", kGerman},
    {"italian", "it", kItalian},
    {"japanese", "ja", kJapanese},
    {"norwegian", "no", kNorwegian},
    {"portuguese", "pt", kPortuguese},
    {"russian", "ru", kRussian},
    {"spanish", "es", kSpanish},
    {"swedish", "sv", kSwedish},
}};

}  // namespace

std::span<const StopWordList> StopWordLists() { return kLists; }

}  // namespace mardle::tools

#include "platform/linux/recognition/language_marks.h"

namespace ovrin {

// Written down by hand: the function words of each language, its everyday words, and those of user interfaces.
const std::array<LanguageMarks, languagesWithMarks>& languageMarks() {
    static constexpr std::array<LanguageMarks, languagesWithMarks> marks{{
        {.language = "en",
         .words =
             u"the and is are was were be been you your he she it its they them their we our us i my me this that "
             u"these those there here what which who whom whose when where why how of in on at to for from with "
             u"without by about into over under after before between through during against out off up down not no "
             u"yes nor or if then than but because while as so such very too also a an one two three all any some "
             u"more most other only own same each every both few many much have has had do does did done will "
             u"would can could shall should may might must let make made get got go going gone come came take took "
             u"know think see look want give use find tell ask work seem feel try leave call please thanks thank "
             u"hello hi good great new old first last long little right big high small large next early young "
             u"important public bad able morning evening night day week month year today tomorrow yesterday "
             u"tonight time people way man woman child world life hand part place case point company number group "
             u"problem fact something anything nothing everything someone everyone nobody house home door room "
             u"water food money book word name friend family school street city country weather breakfast lunch "
             u"dinner rain file files open close save cancel delete settings search help edit view copy paste "
             u"print error failed password account service terms start guide quick found download upload update "
             u"install language translate text test ok click button page window screen user message send options "
             u"sign log back knowledge question answer",
         .endings = u"ing ness ful ght ledge ough ther ly sh"},
        {.language = "fr",
         .words =
             u"le la les un une des du de au aux ce cet cette ces mon ma mes ton ta tes son sa ses notre nos votre "
             u"vos leur leurs je tu il elle on nous vous ils elles me te se moi toi lui eux y en et ou où mais "
             u"donc car ni que qui quoi dont quand comment pourquoi si ne pas plus jamais rien personne très trop "
             u"bien mal peu beaucoup aussi encore déjà toujours souvent ici là est sont suis es êtes sommes était "
             u"étaient été être ai as a avons avez ont avoir fait faire fais va vas vais aller vont peut peux "
             u"pouvoir veut veux vouloir dit dire sais sait savoir vient venir voir voit dans sur sous pour par "
             u"avec sans chez vers entre après avant depuis pendant contre bonjour bonsoir salut merci oui non "
             u"monsieur madame jour journée nuit matin soir an année mois semaine heure temps monde homme femme "
             u"enfant enfants maison chat chien livre eau pain table gare ville rue vie main père mère demain hier "
             u"aujourd hui maintenant fichier fenêtre annuler enregistrer supprimer ouvrir fermer télécharger "
             u"paramètres mot passe oublié aide recherche langue message erreur trouvé quelle quel problème plaît "
             u"reçu tout tous toute toutes autre même bon bonne petit grand nouveau",
         .endings = u"eur euse eux ième ette elle ière oire ement ez aient ais ait ité ée ées que ment"},
        {.language = "de",
         .words =
             u"der die das den dem des ein eine einen einem einer eines und oder aber denn weil dass wenn ob als "
             u"wie wo was wer wen wem warum wann ich du er sie es wir ihr mich dich sich uns euch mir dir ihm ihn "
             u"ihnen mein meine dein deine sein seine unser unsere euer ihre ihren ist sind bin bist war waren "
             u"wäre hat habe haben hast hatte hatten wird werden wurde wirst kann können kannst konnte muss müssen "
             u"soll sollen will wollen willst wollte darf mag möchte geht gehen gibt kommt kommen machen macht "
             u"sagen sagt fahren scheint steht nicht kein keine keinen nein ja auch noch schon nur sehr so also "
             u"hier da dort dann nun immer nie wieder mehr viel viele alle alles etwas nichts man in im an am auf "
             u"aus bei beim mit nach von vom vor zu zum zur über unter um durch für gegen ohne bis seit zwischen "
             u"guten gute gut tag abend nacht morgen heute gestern jahr woche zeit welt haus hause frau mann kind "
             u"leute stadt zug bett sonne wasser buch tisch kalt alt alte neu groß klein hallo danke bitte tschüss "
             u"datei fenster abbrechen speichern löschen öffnen schließen einstellungen suchen suche hilfe sprache "
             u"kennwort passwort fehler gefunden zugriff herunterladen schlüssel wochenende",
         .endings =
             u"ung ungen keit keiten heit heiten lich liche lichen isch ische ischen chen schaft ieren iert tzt cht"},
        {.language = "es",
         .words =
             u"el la los las un una unos unas lo al del de y e o u pero porque que quien qué quién cuál cómo "
             u"cuándo dónde donde cuando como si yo tú él ella usted nosotros ellos ellas me te se nos le les mi "
             u"mis tu tus su sus mí ti este esta estos estas ese esa eso esto aquel es son soy eres era fue ser "
             u"está están estoy estar hay ha han he has haber tiene tengo tener hace hacer puede puedo poder "
             u"quiero quiere querer va voy ir vamos dice digas decir sabe saber sale gusta necesito no sí más "
             u"menos muy mucho muchos mucha muchas poco todo todos toda nada algo nadie nunca siempre también ya "
             u"aquí ahí allí ahora hoy ayer mañana bien mal en a con por para sin sobre entre hasta desde hacia "
             u"contra hola gracias adiós señor señora buenos buenas días tardes noches día noche hora año mes "
             u"semana tiempo mundo hombre mujer niño niños casa hermano hermana amigo amigos madre padre abuela "
             u"plan sol playa tren carne mesa libro agua comida ciudad calle vida mano grande nueva nuevo idioma "
             u"archivo ventana cancelar guardar abrir cerrar eliminar borrar ayuda buscar contraseña configuración "
             u"descargar mensaje error ocho dos",
         .endings = u"ción ciones dad dades miento mientos mente ando iendo aba ía ías illo illa ero era ez uelo"},
        {.language = "it",
         .words = u"il lo la i gli le un uno una del dello della dei degli delle al allo alla ai agli alle dal dalla "
                  u"nel nella nei nelle sul sulla col di a da in con su per tra fra e ed o ma perché che chi cui quale "
                  u"quando come dove se anche ancora già sempre mai più meno molto poco tanto troppo bene male non sì "
                  u"no qui qua là adesso ora oggi ieri domani io tu lui lei noi voi loro mi ti ci vi si me te mio mia "
                  u"miei mie tuo tua suo sua nostro nostra questo questa questi queste quello quella è sono sei siamo "
                  u"siete era erano essere ho hai ha abbiamo avete hanno avere fa fare faccio va vado andare può posso "
                  u"potere vuole voglio volere dice dire so sapere sta sto stai stare dai dare trova mangiato lavora "
                  u"pronta ciao grazie prego buongiorno buonasera buona buono buon notte giorno sera mattina anno mese "
                  u"settimana tempo mondo uomo donna bambino casa libro bello bella mare amici amico sorella fratello "
                  u"madre padre acqua pane strada città vita mano due passi solo cosa file finestra annulla salva apri "
                  u"chiudi elimina aiuto cerca password dimenticata impostazioni scarica scaricare messaggio errore "
                  u"lingua nome stazione spiaggia",
         .endings = u"zione zioni mente aggio aggi ità etto etta ello ella iamo ando endo are ere ire ggia chi gli tta "
                    u"tto zza cchio"},
        {.language = "pt",
         .words =
             u"o a os as um uma uns umas do da dos das no na nos nas ao à aos às pelo pela de em com por para sem "
             u"sobre entre até desde e ou mas porque que quem qual quando como onde se também ainda já sempre "
             u"nunca mais menos muito muita pouco tudo todo todos nada algo ninguém bem mal não sim aqui ali lá "
             u"agora hoje ontem amanhã eu tu ele ela você vocês nós eles elas me te lhe mim meu minha meus minhas "
             u"teu tua seu sua nosso este esta isso isto esse essa aquele é são sou era foi ser está estão estou "
             u"estar há tem tenho ter faz fazer pode posso poder quer quero querer vai vou ir vão diz dizer sei "
             u"saber deu dá dar fica fala mora preciso olá obrigado obrigada bom boa dia tarde noite manhã hora "
             u"ano mês semana tempo mundo homem mulher menino meninos casa carro pai mãe irmã irmão livro porta pé "
             u"fim dois pão leite água cidade rua vida mão inteiro arquivo ficheiro janela cancelar salvar guardar "
             u"abrir fechar excluir ajuda buscar senha configurações baixar mensagem erro inglês trem",
         .endings = u"ção ções dade dades mente ando endo inho inha agem ões ão eiro eira oso nh"},
        {.language = "nl",
         .words = u"de het een en of maar want omdat dat die dit deze wat wie waar wanneer waarom hoe als dan toen ik "
                  u"jij je u hij zij ze wij we jullie mij me jou hem haar ons hun mijn jouw uw zijn onze is ben bent "
                  u"was waren wordt worden heeft heb hebt hebben had kan kunnen kunt moet moeten mag wil willen zal "
                  u"zullen zou gaat gaan ga komt komen doet doen maakt zegt weet staat woont regent niet geen nee ja "
                  u"ook nog al alleen zeer heel hele zo hier daar er nu nooit altijd weer meer veel alle alles iets "
                  u"niets misschien in op aan van voor met naar uit bij te tot om over onder door tegen zonder tussen "
                  u"hallo hoi dank dankjewel bedankt alsjeblieft goede goed goeden dag avond nacht morgen vandaag "
                  u"gisteren ochtend week jaar tijd wereld huis man vrouw kind mensen stad bed strand fiets zus broer "
                  u"water boek mooi ziek vroeg straks bestand venster annuleren opslaan verwijderen openen sluiten "
                  u"instellingen zoeken hulp help wachtwoord gevonden fout taal vul",
         .endings = u"ing ingen heid heden lijk lijke tje tjes eren elijk schap oord ijk aan aar ij eel ijd uis"},
        {.language = "sv",
         .words =
             u"och eller men att som om när var vad vem varför hur därför än då så jag du han hon den det vi ni de "
             u"mig dig sig oss er honom henne dem min mitt mina din ditt dina sin sitt vår ert deras denna detta "
             u"är vara varit blir bli blev har hade ha kan kunde ska skall skulle vill ville måste får fick gör "
             u"göra gå går kom kommer säger vet ser finns mår förstår ligger bor köpa inte ingen inget nej ja jo "
             u"också bara mycket lite här där nu aldrig alltid igen mer alla allt något någonting man en ett i på "
             u"av för med till från ur hos vid under över efter före mot utan mellan in hej tack snälla god gott "
             u"goda morgon kväll natt dag dagen idag igår imorgon vecka år tid världen hus bil kvinna barn folk "
             u"stan stad hund far mor syster bror vatten bok väg hand bröd mjölk hela fil fönster avbryt spara ta "
             u"bort öppna stäng inställningar sök hjälp lösenord hämta fel språk ange",
         .endings = u"ning ningar het heter lig liga ande ende arna erna orna ade"},
        {.language = "pl",
         .words =
             u"i a oraz lub albo ale bo że żeby gdy kiedy gdzie jak co kto czy dlaczego czemu który która które ja "
             u"ty on ona ono my wy oni one mnie mi cię ci go jej jemu nam nas wam was ich im mój moja moje twój "
             u"twoja swój swoje jego ten ta to te tego tej tym tych jest są jestem jesteś był była było być ma mam "
             u"masz mieć może mogę można musi muszę chce chcę wiem wie nie robi robić idzie idę mieszka rozumiem "
             u"kupić w we na do z ze od po o u przy przez dla bez pod nad przed za się tak już jeszcze tylko "
             u"bardzo też tu tam teraz nigdy zawsze więcej dużo wszystko coś nic potem potrzebuję cześć dzień "
             u"dobry dobranoc dziękuję proszę przepraszam dziś dzisiaj jutro wczoraj rok roku tydzień czas świat "
             u"świecie dom domu człowiek kobieta dziecko ludzie miasto pies psa kot kino kina siostra brat woda "
             u"chleb mleko książka stole cały plik okno anuluj zapisz usuń otwórz zamknij ustawienia szukaj pomoc "
             u"hasło pobierz błąd język wpisz",
         .endings = u"ość ości nie ania enia anie enie ego emu owy owa owe ski ska skie cja cji uje uję ować ów ych "
                    u"ich ami ach cz sz rz"},
        {.language = "tr",
         .words =
             u"ve veya ya ama fakat çünkü ki de da ile için gibi kadar göre sonra önce ben sen o biz siz onlar "
             u"bana sana ona bize size beni seni onu bizi sizi benim senin onun bizim sizin bu şu bunu şunu bunlar "
             u"kendi mi mı mu mü ne kim nerede nasıl neden niçin niye hangi kaç var yok değil evet hayır olarak "
             u"oldu olur olan olmak ediyor etti et yap yaptı yapmak git gitti gel geldi istiyorum istiyor "
             u"biliyorum lazım gerek sevdim girin yaşıyor bir iki üç on çok az daha en her hiç tüm bütün bazı şey "
             u"şimdi bugün dün yarın burada orada hep zaman merhaba selam teşekkürler teşekkür ederim lütfen "
             u"günaydın iyi geceler akşamlar günler gün gece sabah akşam hafta yıl dakika saat dünya ev at adam "
             u"kadın çocuk insan şehir kız kardeş su ekmek süt kitap yağmur nasılsın dosya pencere iptal kaydet "
             u"sil aç kapat ayarlar ara yardım şifre indir hata dil farklı",
         .endings = u"lar ler ları leri mak mek yor yorum dir dır dur dür lık lik luk lük siz sız ince ında inde dan "
                    u"den acak ecek miş mış iniz ınız"},
    }};
    return marks;
}

const std::array<LetterMark, lettersWithMarks>& letterMarks() {
    static constexpr std::array<LetterMark, lettersWithMarks> marks{{
        {u'ß', "de", 1},    {u'ä', "de", 0.5},  {u'ä', "sv", 0.5}, {u'ö', "de", 0.35}, {u'ö', "sv", 0.35},
        {u'ö', "tr", 0.3},  {u'ü', "de", 0.5},  {u'ü', "tr", 0.5}, {u'å', "sv", 1},    {u'ñ', "es", 1},
        {u'¿', "es", 1},    {u'¡', "es", 1},    {u'ã', "pt", 1},   {u'õ', "pt", 1},    {u'ç', "fr", 0.34},
        {u'ç', "pt", 0.33}, {u'ç', "tr", 0.33}, {u'ê', "fr", 0.5}, {u'ê', "pt", 0.5},  {u'è', "fr", 0.5},
        {u'è', "it", 0.5},  {u'à', "fr", 0.5},  {u'à', "it", 0.5}, {u'ù', "fr", 0.4},  {u'ù', "it", 0.6},
        {u'ò', "it", 1},    {u'ì', "it", 1},    {u'ó', "es", 0.5}, {u'ó', "pl", 0.4},  {u'ó', "pt", 0.1},
        {u'í', "es", 0.7},  {u'í', "pt", 0.3},  {u'ú', "es", 0.7}, {u'ú', "pt", 0.3},  {u'á', "es", 0.5},
        {u'á', "pt", 0.5},  {u'é', "fr", 0.7},  {u'é', "es", 0.2}, {u'é', "pt", 0.1},  {u'œ', "fr", 1},
        {u'î', "fr", 1},    {u'ï', "fr", 0.5},  {u'ï', "nl", 0.5}, {u'ô', "fr", 0.6},  {u'ô', "pt", 0.4},
        {u'û', "fr", 1},    {u'â', "fr", 0.4},  {u'â', "pt", 0.4}, {u'â', "tr", 0.2},  {u'ë', "nl", 0.6},
        {u'ë', "fr", 0.4},  {u'ł', "pl", 1},    {u'ą', "pl", 1},   {u'ę', "pl", 1},    {u'ś', "pl", 1},
        {u'ź', "pl", 1},    {u'ż', "pl", 1},    {u'ć', "pl", 1},   {u'ń', "pl", 1},    {u'ğ', "tr", 1},
        {u'ı', "tr", 1},    {u'ş', "tr", 1},    {u'İ', "tr", 1},
    }};
    return marks;
}

}  // namespace ovrin

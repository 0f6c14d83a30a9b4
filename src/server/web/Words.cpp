#include "server/web/Words.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace pollarix::server {

namespace {

constexpr std::array<Words, 9> Languages = {{
    {.language = "en",
     .surveys = "Surveys",
     .noSurveys = "There are no public surveys at the moment.",
     .pageOf = "Page %1 of %2",
     .several = "You can choose several answers.",
     .yourAnswer = "Your answer",
     .next = "Next",
     .back = "Back",
     .send = "Send",
     .later = "Save and go on later",
     .laterTitle = "Your answers are saved",
     .laterText = "They have not been sent yet. Go on later with this link, and keep it to "
                  "yourself: whoever has it can read and change your answers.",
     .laterKept = "The link works until %1.",
     .laterLink = "Your link",
     .goOn = "Go on now",
     .thanksTitle = "Thank you",
     .thanksText = "Your answers have been stored.",
     .thanksTwice = "You had sent this form before with other answers. Both have been kept.",
     .closedTitle = "This survey is closed",
     .closedText = "It takes no answers at the moment. Nothing has been stored.",
     .errorTitle = "There is a problem",
     .tooLong = "This answer is too long. Please shorten it to %1 characters.",
     .foreign = "Some of these answers do not belong to this form. Please check them.",
     .notStored = "Your answers could not be stored just now. They are all still here; please try "
                  "again in a moment.",
     .tooMuch = "Your answers are too long to be sent all together. They are still on the page of "
                "the form; please go back there and shorten some.",
     .tryAgain = "Try again",
     .noLine = "The server cannot be reached. Your answers are still here; please try again in a "
               "moment.",
     .notFoundTitle = "Page not found",
     .notFoundText = "There is nothing at this address. Please check the link that you were given.",
     .failedTitle = "That did not work",
     .failedText = "Please go back and try again in a moment."},
    {.language = "de",
     .surveys = "Umfragen",
     .noSurveys = "Zurzeit gibt es keine öffentlichen Umfragen.",
     .pageOf = "Seite %1 von %2",
     .several = "Sie können mehrere Antworten wählen.",
     .yourAnswer = "Ihre Antwort",
     .next = "Weiter",
     .back = "Zurück",
     .send = "Absenden",
     .later = "Speichern und später fortsetzen",
     .laterTitle = "Ihre Antworten sind gespeichert",
     .laterText = "Sie wurden noch nicht abgesendet. Mit diesem Link können Sie später fortfahren. "
                  "Behalten Sie ihn für sich: Wer ihn hat, kann Ihre Antworten lesen und ändern.",
     .laterKept = "Der Link gilt bis %1.",
     .laterLink = "Ihr Link",
     .goOn = "Jetzt fortfahren",
     .thanksTitle = "Vielen Dank",
     .thanksText = "Ihre Antworten wurden gespeichert.",
     .thanksTwice = "Sie hatten dieses Formular schon mit anderen Antworten abgesendet. Beide "
                    "wurden aufbewahrt.",
     .closedTitle = "Diese Umfrage ist geschlossen",
     .closedText = "Sie nimmt zurzeit keine Antworten an. Es wurde nichts gespeichert.",
     .errorTitle = "Es gibt ein Problem",
     .tooLong = "Diese Antwort ist zu lang. Bitte kürzen Sie sie auf %1 Zeichen.",
     .foreign = "Einige dieser Antworten gehören nicht zu diesem Formular. Bitte prüfen Sie sie.",
     .notStored =
         "Ihre Antworten konnten gerade nicht gespeichert werden. Sie sind alle noch hier; "
         "bitte versuchen Sie es gleich noch einmal.",
     .tooMuch = "Ihre Antworten sind zusammen zu lang, um gesendet zu werden. Sie stehen noch auf "
                "der Seite des Formulars; bitte gehen Sie dorthin zurück und kürzen Sie einige.",
     .tryAgain = "Noch einmal versuchen",
     .noLine =
         "Der Server ist nicht erreichbar. Ihre Antworten sind noch hier; bitte versuchen Sie "
         "es gleich noch einmal.",
     .notFoundTitle = "Seite nicht gefunden",
     .notFoundText = "Unter dieser Adresse gibt es nichts. Bitte prüfen Sie den Link, den Sie "
                     "bekommen haben.",
     .failedTitle = "Das hat nicht geklappt",
     .failedText = "Bitte gehen Sie zurück und versuchen Sie es gleich noch einmal."},
    {.language = "fr",
     .surveys = "Enquêtes",
     .noSurveys = "Il n’y a pas d’enquête publique en ce moment.",
     .pageOf = "Page %1 sur %2",
     .several = "Vous pouvez choisir plusieurs réponses.",
     .yourAnswer = "Votre réponse",
     .next = "Suivant",
     .back = "Retour",
     .send = "Envoyer",
     .later = "Enregistrer et continuer plus tard",
     .laterTitle = "Vos réponses sont enregistrées",
     .laterText =
         "Elles n’ont pas encore été envoyées. Continuez plus tard avec ce lien et gardez-le "
         "pour vous : toute personne qui l’a peut lire et modifier vos réponses.",
     .laterKept = "Le lien est valable jusqu’au %1.",
     .laterLink = "Votre lien",
     .goOn = "Continuer maintenant",
     .thanksTitle = "Merci",
     .thanksText = "Vos réponses ont été enregistrées.",
     .thanksTwice = "Vous aviez déjà envoyé ce formulaire avec d’autres réponses. Les deux ont été "
                    "conservées.",
     .closedTitle = "Cette enquête est fermée",
     .closedText = "Elle n’accepte pas de réponses en ce moment. Rien n’a été enregistré.",
     .errorTitle = "Il y a un problème",
     .tooLong = "Cette réponse est trop longue. Merci de la réduire à %1 caractères.",
     .foreign = "Certaines de ces réponses n’appartiennent pas à ce formulaire. Merci de les "
                "vérifier.",
     .notStored = "Vos réponses n’ont pas pu être enregistrées. Elles sont toutes encore ici ; "
                  "merci de réessayer dans un instant.",
     .tooMuch = "Vos réponses sont trop longues pour être envoyées ensemble. Elles sont encore sur "
                "la page du formulaire ; merci d’y revenir et d’en raccourcir quelques-unes.",
     .tryAgain = "Réessayer",
     .noLine = "Le serveur est injoignable. Vos réponses sont encore ici ; merci de réessayer dans "
               "un instant.",
     .notFoundTitle = "Page introuvable",
     .notFoundText = "Il n’y a rien à cette adresse. Merci de vérifier le lien que vous avez reçu.",
     .failedTitle = "Cela n’a pas fonctionné",
     .failedText = "Merci de revenir en arrière et de réessayer dans un instant."},
    {.language = "es",
     .surveys = "Encuestas",
     .noSurveys = "No hay encuestas públicas en este momento.",
     .pageOf = "Página %1 de %2",
     .several = "Puede elegir varias respuestas.",
     .yourAnswer = "Su respuesta",
     .next = "Siguiente",
     .back = "Atrás",
     .send = "Enviar",
     .later = "Guardar y continuar más tarde",
     .laterTitle = "Sus respuestas están guardadas",
     .laterText = "Todavía no se han enviado. Continúe más tarde con este enlace y no lo comparta: "
                  "quien lo tenga puede leer y cambiar sus respuestas.",
     .laterKept = "El enlace es válido hasta el %1.",
     .laterLink = "Su enlace",
     .goOn = "Continuar ahora",
     .thanksTitle = "Gracias",
     .thanksText = "Sus respuestas se han guardado.",
     .thanksTwice =
         "Ya había enviado este formulario con otras respuestas. Se han conservado ambas.",
     .closedTitle = "Esta encuesta está cerrada",
     .closedText = "No admite respuestas en este momento. No se ha guardado nada.",
     .errorTitle = "Hay un problema",
     .tooLong = "Esta respuesta es demasiado larga. Redúzcala a %1 caracteres.",
     .foreign = "Algunas de estas respuestas no pertenecen a este formulario. Revíselas.",
     .notStored =
         "No se han podido guardar sus respuestas. Todas siguen aquí; inténtelo de nuevo en "
         "un momento.",
     .tooMuch = "Sus respuestas son demasiado largas para enviarlas todas juntas. Siguen en la "
                "página del formulario; vuelva a ella y acorte algunas.",
     .tryAgain = "Intentar de nuevo",
     .noLine = "No se puede acceder al servidor. Sus respuestas siguen aquí; inténtelo de nuevo en "
               "un momento.",
     .notFoundTitle = "Página no encontrada",
     .notFoundText = "No hay nada en esta dirección. Compruebe el enlace que ha recibido.",
     .failedTitle = "No ha funcionado",
     .failedText = "Vuelva atrás e inténtelo de nuevo en un momento."},
    {.language = "pt",
     .surveys = "Inquéritos",
     .noSurveys = "Não há inquéritos públicos neste momento.",
     .pageOf = "Página %1 de %2",
     .several = "Pode escolher várias respostas.",
     .yourAnswer = "A sua resposta",
     .next = "Seguinte",
     .back = "Voltar",
     .send = "Enviar",
     .later = "Guardar e continuar mais tarde",
     .laterTitle = "As suas respostas estão guardadas",
     .laterText =
         "Ainda não foram enviadas. Continue mais tarde com esta ligação e não a partilhe: "
         "quem a tiver pode ler e alterar as suas respostas.",
     .laterKept = "A ligação é válida até %1.",
     .laterLink = "A sua ligação",
     .goOn = "Continuar agora",
     .thanksTitle = "Obrigado",
     .thanksText = "As suas respostas foram guardadas.",
     .thanksTwice = "Já tinha enviado este formulário com outras respostas. Ambas foram guardadas.",
     .closedTitle = "Este inquérito está fechado",
     .closedText = "Não aceita respostas neste momento. Nada foi guardado.",
     .errorTitle = "Há um problema",
     .tooLong = "Esta resposta é demasiado longa. Reduza-a para %1 caracteres.",
     .foreign = "Algumas destas respostas não pertencem a este formulário. Verifique-as.",
     .notStored = "Não foi possível guardar as suas respostas. Continuam todas aqui; tente de novo "
                  "daqui a pouco.",
     .tooMuch = "As suas respostas são demasiado longas para serem enviadas todas juntas. "
                "Continuam na página do formulário; volte lá e encurte algumas.",
     .tryAgain = "Tentar de novo",
     .noLine =
         "Não é possível contactar o servidor. As suas respostas continuam aqui; tente de novo "
         "daqui a pouco.",
     .notFoundTitle = "Página não encontrada",
     .notFoundText = "Não há nada neste endereço. Verifique a ligação que recebeu.",
     .failedTitle = "Não funcionou",
     .failedText = "Volte atrás e tente de novo daqui a pouco."},
    {.language = "it",
     .surveys = "Sondaggi",
     .noSurveys = "Al momento non ci sono sondaggi pubblici.",
     .pageOf = "Pagina %1 di %2",
     .several = "È possibile scegliere più risposte.",
     .yourAnswer = "La sua risposta",
     .next = "Avanti",
     .back = "Indietro",
     .send = "Invia",
     .later = "Salva e continua più tardi",
     .laterTitle = "Le sue risposte sono salvate",
     .laterText =
         "Non sono ancora state inviate. Continui più tardi con questo link e lo tenga per "
         "sé: chi lo possiede può leggere e modificare le sue risposte.",
     .laterKept = "Il link è valido fino al %1.",
     .laterLink = "Il suo link",
     .goOn = "Continua ora",
     .thanksTitle = "Grazie",
     .thanksText = "Le sue risposte sono state salvate.",
     .thanksTwice = "Aveva già inviato questo modulo con altre risposte. Sono state conservate "
                    "entrambe.",
     .closedTitle = "Questo sondaggio è chiuso",
     .closedText = "Al momento non accetta risposte. Non è stato salvato nulla.",
     .errorTitle = "C’è un problema",
     .tooLong = "Questa risposta è troppo lunga. La riduca a %1 caratteri.",
     .foreign = "Alcune di queste risposte non appartengono a questo modulo. Le controlli.",
     .notStored =
         "Non è stato possibile salvare le sue risposte. Sono ancora tutte qui; riprovi tra "
         "un momento.",
     .tooMuch = "Le sue risposte sono troppo lunghe per essere inviate tutte insieme. Sono ancora "
                "sulla pagina del modulo; torni lì e ne accorci qualcuna.",
     .tryAgain = "Riprova",
     .noLine = "Il server non è raggiungibile. Le sue risposte sono ancora qui; riprovi tra un "
               "momento.",
     .notFoundTitle = "Pagina non trovata",
     .notFoundText = "A questo indirizzo non c’è nulla. Controlli il link che ha ricevuto.",
     .failedTitle = "Non ha funzionato",
     .failedText = "Torni indietro e riprovi tra un momento."},
    {.language = "nl",
     .surveys = "Enquêtes",
     .noSurveys = "Er zijn op dit moment geen openbare enquêtes.",
     .pageOf = "Pagina %1 van %2",
     .several = "U kunt meer antwoorden kiezen.",
     .yourAnswer = "Uw antwoord",
     .next = "Volgende",
     .back = "Terug",
     .send = "Verzenden",
     .later = "Opslaan en later verdergaan",
     .laterTitle = "Uw antwoorden zijn opgeslagen",
     .laterText = "Ze zijn nog niet verzonden. Ga later verder met deze link en houd hem voor "
                  "uzelf: wie hem heeft, kan uw antwoorden lezen en wijzigen.",
     .laterKept = "De link werkt tot %1.",
     .laterLink = "Uw link",
     .goOn = "Nu verdergaan",
     .thanksTitle = "Hartelijk dank",
     .thanksText = "Uw antwoorden zijn opgeslagen.",
     .thanksTwice = "U had dit formulier al met andere antwoorden verzonden. Beide zijn bewaard.",
     .closedTitle = "Deze enquête is gesloten",
     .closedText = "Er worden nu geen antwoorden aangenomen. Er is niets opgeslagen.",
     .errorTitle = "Er is een probleem",
     .tooLong = "Dit antwoord is te lang. Kort het in tot %1 tekens.",
     .foreign = "Sommige van deze antwoorden horen niet bij dit formulier. Controleer ze.",
     .notStored = "Uw antwoorden konden nu niet worden opgeslagen. Ze staan allemaal nog hier; "
                  "probeer het zo nog eens.",
     .tooMuch = "Uw antwoorden zijn samen te lang om te verzenden. Ze staan nog op de pagina van "
                "het formulier; ga daarheen terug en maak er een paar korter.",
     .tryAgain = "Opnieuw proberen",
     .noLine =
         "De server is niet bereikbaar. Uw antwoorden staan nog hier; probeer het zo nog eens.",
     .notFoundTitle = "Pagina niet gevonden",
     .notFoundText = "Op dit adres is niets te vinden. Controleer de link die u hebt gekregen.",
     .failedTitle = "Dat is niet gelukt",
     .failedText = "Ga terug en probeer het zo nog eens."},
    {.language = "pl",
     .surveys = "Ankiety",
     .noSurveys = "W tej chwili nie ma publicznych ankiet.",
     .pageOf = "Strona %1 z %2",
     .several = "Można wybrać kilka odpowiedzi.",
     .yourAnswer = "Twoja odpowiedź",
     .next = "Dalej",
     .back = "Wstecz",
     .send = "Wyślij",
     .later = "Zapisz i dokończ później",
     .laterTitle = "Twoje odpowiedzi są zapisane",
     .laterText = "Nie zostały jeszcze wysłane. Możesz dokończyć później, używając tego linku. "
                  "Zachowaj go dla siebie: kto go ma, może czytać i zmieniać Twoje odpowiedzi.",
     .laterKept = "Link działa do %1.",
     .laterLink = "Twój link",
     .goOn = "Kontynuuj teraz",
     .thanksTitle = "Dziękujemy",
     .thanksText = "Twoje odpowiedzi zostały zapisane.",
     .thanksTwice = "Ten formularz został już wcześniej wysłany z innymi odpowiedziami. Zachowano "
                    "obie wersje.",
     .closedTitle = "Ta ankieta jest zamknięta",
     .closedText = "W tej chwili nie przyjmuje odpowiedzi. Nic nie zostało zapisane.",
     .errorTitle = "Wystąpił problem",
     .tooLong = "Ta odpowiedź jest za długa. Skróć ją do %1 znaków.",
     .foreign = "Niektóre z tych odpowiedzi nie należą do tego formularza. Sprawdź je.",
     .notStored = "Nie udało się teraz zapisać Twoich odpowiedzi. Wszystkie nadal tu są; spróbuj "
                  "ponownie za chwilę.",
     .tooMuch = "Twoje odpowiedzi są razem za długie, aby je wysłać. Nadal są na stronie "
                "formularza; wróć tam i skróć niektóre z nich.",
     .tryAgain = "Spróbuj ponownie",
     .noLine =
         "Nie można połączyć się z serwerem. Twoje odpowiedzi nadal tu są; spróbuj ponownie za "
         "chwilę.",
     .notFoundTitle = "Nie znaleziono strony",
     .notFoundText = "Pod tym adresem nic nie ma. Sprawdź otrzymany link.",
     .failedTitle = "To się nie udało",
     .failedText = "Wróć i spróbuj ponownie za chwilę."},
    {.language = "ar",
     .isRightToLeft = true,
     .surveys = "الاستبيانات",
     .noSurveys = "لا توجد استبيانات عامة في الوقت الحالي.",
     .pageOf = "صفحة %1 من %2",
     .several = "يمكنك اختيار أكثر من إجابة.",
     .yourAnswer = "إجابتك",
     .next = "التالي",
     .back = "السابق",
     .send = "إرسال",
     .later = "حفظ والمتابعة لاحقًا",
     .laterTitle = "تم حفظ إجاباتك",
     .laterText =
         "لم يتم إرسالها بعد. يمكنك المتابعة لاحقًا من خلال هذا الرابط. لا تشاركه مع أحد، فكل "
         "من يملكه يستطيع قراءة إجاباتك وتغييرها.",
     .laterKept = "الرابط صالح حتى %1.",
     .laterLink = "الرابط الخاص بك",
     .goOn = "المتابعة الآن",
     .thanksTitle = "شكرًا لك",
     .thanksText = "تم حفظ إجاباتك.",
     .thanksTwice = "سبق أن أرسلت هذا النموذج بإجابات أخرى، وقد تم الاحتفاظ بكلتيهما.",
     .closedTitle = "هذا الاستبيان مغلق",
     .closedText = "لا يقبل إجابات في الوقت الحالي. لم يتم حفظ أي شيء.",
     .errorTitle = "هناك مشكلة",
     .tooLong = "هذه الإجابة طويلة جدًا. يرجى اختصارها إلى %1 حرف.",
     .foreign = "بعض هذه الإجابات لا ينتمي إلى هذا النموذج. يرجى التحقق منها.",
     .notStored = "تعذر حفظ إجاباتك الآن. كلها ما زالت هنا، يرجى المحاولة مرة أخرى بعد قليل.",
     .tooMuch =
         "إجاباتك معا أطول من أن تُرسل. ما زالت في صفحة الاستبيان، يرجى الرجوع إليها واختصار بعضها.",
     .tryAgain = "إعادة المحاولة",
     .noLine = "تعذر الوصول إلى الخادم. إجاباتك ما زالت هنا، يرجى المحاولة مرة أخرى بعد قليل.",
     .notFoundTitle = "الصفحة غير موجودة",
     .notFoundText = "لا يوجد شيء في هذا العنوان. يرجى التحقق من الرابط الذي حصلت عليه.",
     .failedTitle = "لم ينجح ذلك",
     .failedText = "يرجى الرجوع والمحاولة مرة أخرى بعد قليل."},
}};

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

// In thousandths; what is no weight is none.
int Weight(std::string_view parameter) {
    parameter = Trimmed(parameter);
    if (!parameter.starts_with("q="))
        return 1000;
    parameter.remove_prefix(2);
    if (parameter.empty() || (parameter[0] != '0' && parameter[0] != '1'))
        return 0;
    int weight = parameter[0] == '1' ? 1000 : 0;
    if (parameter.size() > 2 && parameter[1] == '.' && weight == 0) {
        int unit = 100;
        for (const char c : parameter.substr(2, 3)) {
            if (c < '0' || c > '9')
                return 0;
            weight += unit * (c - '0');
            unit /= 10;
        }
    }
    return weight;
}

bool IsLanguage(std::string_view wanted, std::string_view language) {
    wanted = wanted.substr(0, wanted.find('-')); // "de-AT" is German enough
    return std::equal(wanted.begin(), wanted.end(), language.begin(), language.end(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == b; });
}

} // namespace

std::span<const Words> AllWords() {
    return Languages;
}

const Words& WordsFor(std::string_view acceptLanguage) {
    const Words* best = &Languages[0];
    int bestWeight = 0;
    for (int most = 32; most > 0 && !acceptLanguage.empty(); --most) {
        const std::size_t comma = acceptLanguage.find(',');
        const std::string_view item = acceptLanguage.substr(0, comma);
        acceptLanguage =
            comma == std::string_view::npos ? std::string_view() : acceptLanguage.substr(comma + 1);
        const std::size_t semicolon = item.find(';');
        const int weight =
            semicolon == std::string_view::npos ? 1000 : Weight(item.substr(semicolon + 1));
        if (weight <= bestWeight)
            continue;
        for (const Words& words : Languages)
            if (IsLanguage(Trimmed(item.substr(0, semicolon)), words.language)) {
                best = &words;
                bestWeight = weight;
            }
    }
    return *best;
}

std::string With(std::string_view text, std::string_view first, std::string_view second) {
    std::string filled;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPlace =
            text[i] == '%' && i + 1 < text.size() && (text[i + 1] == '1' || text[i + 1] == '2');
        if (isPlace)
            filled += text[++i] == '1' ? first : second;
        else
            filled += text[i];
    }
    return filled;
}

} // namespace pollarix::server

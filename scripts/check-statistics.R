# Does the sums of tools/statistics in R, from the answers that it wrote, into R.tsv beside them, and
# reads the files with labels. Ends with a failure when one of these does not hold the same answers.
#   Rscript scripts/check-statistics.R DIRECTORY
suppressMessages(library(survey))
suppressMessages(library(haven))
directory <- commandArgs(TRUE)[1]
d <- read.csv(file.path(directory, "answers.csv"))
out <- file(file.path(directory, "R.tsv"), "w")
tell <- function(name, value) {
  if (length(value) == 1 && !is.na(value) && is.finite(value))
    writeLines(sprintf("%s\t%.17g", name, value), out)
}
quiet <- function(x) suppressWarnings(suppressMessages(x))
try_tell <- function(name, f) tell(name, tryCatch(quiet(f()), error = function(e) NA))

for (v in c("q2", "q4_1", "q6")) {
  t <- table(factor(d[[v]], levels = if (v == "q4_1") 0:1 else seq_len(max(d[[v]], na.rm = TRUE))))
  for (i in seq_along(t)) tell(sprintf("freq.%s.%d", v, i), t[[i]])
}

cross <- function(rows, columns, ordinal) {
  name <- sprintf("cross.%s.%s.", rows, columns)
  ok <- !is.na(d[[rows]]) & !is.na(d[[columns]])
  t <- table(d[[rows]][ok], d[[columns]][ok])
  if (nrow(t) < 2 || ncol(t) < 2) return()
  test <- quiet(chisq.test(t, correct = FALSE))
  tell(paste0(name, "chi2"), test$statistic)
  tell(paste0(name, "df"), test$parameter)
  tell(paste0(name, "p"), test$p.value)
  g <- 2 * sum(ifelse(t > 0, t * log(t / test$expected), 0))
  tell(paste0(name, "lr"), g)
  tell(paste0(name, "lrp"), pchisq(g, test$parameter, lower.tail = FALSE))
  tell(paste0(name, "v"), sqrt(test$statistic / sum(t) / (min(dim(t)) - 1)))
  if (rownames(t)[1] %in% c("0", "1") && colnames(t)[1] %in% c("0", "1"))
    tell(paste0(name, "residual"), test$stdres[1, 1])
  if (all(dim(t) == 2)) tell(paste0(name, "fisher"), fisher.test(t)$p.value)
  # From all pairs, which takes too long for many.
  if (ordinal && sum(t) <= 1000)
    tell(paste0(name, "taub"), cor(d[[rows]][ok], d[[columns]][ok], method = "kendall"))
}
cross("q1", "q2", FALSE)
cross("q2", "q4_1", FALSE)
cross("q6", "q5_1", TRUE)
cross("q5_1", "q5_2", TRUE)
for (i in 1:4) {
  t <- table(d[[paste0("q4_", i)]], d$q2)
  if (all(dim(t) == 2)) tell(sprintf("lines.%d.chi2", i), quiet(chisq.test(t, correct = FALSE))$statistic)
}

for (v in c("q3", "q5_1")) {
  x <- d[[v]][!is.na(d[[v]])]
  name <- sprintf("describe.%s.", v)
  tell(paste0(name, "n"), length(x))
  tell(paste0(name, "mean"), mean(x))
  tell(paste0(name, "sd"), sd(x))
  tell(paste0(name, "se"), sd(x) / sqrt(length(x)))
  try_tell(paste0(name, "low"), function() t.test(x)$conf.int[1])
  try_tell(paste0(name, "high"), function() t.test(x)$conf.int[2])
  q <- quantile(x, c(0.25, 0.5, 0.75), type = 6)
  tell(paste0(name, "q1"), q[[1]])
  tell(paste0(name, "median"), q[[2]])
  tell(paste0(name, "q3"), q[[3]])
  tell(paste0(name, "min"), min(x))
  tell(paste0(name, "max"), max(x))
}

compare <- function(variable, group) {
  name <- sprintf("compare.%s.%s.", variable, group)
  x <- d[[variable]]
  g <- factor(d[[group]])
  ok <- !is.na(x) & !is.na(g)
  x <- x[ok]
  g <- droplevels(g[ok])
  if (nlevels(g) == 2) {
    try_tell(paste0(name, "t"), function() t.test(x ~ g)$statistic)
    try_tell(paste0(name, "tdf"), function() t.test(x ~ g)$parameter)
    try_tell(paste0(name, "tp"), function() t.test(x ~ g)$p.value)
    try_tell(paste0(name, "tlow"), function() t.test(x ~ g)$conf.int[1])
    w <- quiet(wilcox.test(x ~ g, exact = FALSE, correct = FALSE))
    tell(paste0(name, "u"), w$statistic)
    tell(paste0(name, "mwp"), w$p.value)
  }
  a <- anova(lm(x ~ g))
  tell(paste0(name, "f"), a$`F value`[1])
  tell(paste0(name, "fp"), a$`Pr(>F)`[1])
  tell(paste0(name, "within"), a$`Sum Sq`[2])
  try_tell(paste0(name, "h"), function() kruskal.test(x, g)$statistic)
  try_tell(paste0(name, "hp"), function() kruskal.test(x, g)$p.value)
}
compare("q3", "q2")
compare("q3", "q1")
compare("q5_1", "q6")

items <- d[, paste0("q5_", 1:4)]
items <- items[complete.cases(items), ]
alpha <- function(m) ncol(m) / (ncol(m) - 1) * (1 - sum(apply(m, 2, var)) / var(rowSums(m)))
tell("alpha", alpha(items))
for (i in 1:4) {
  tell(sprintf("alpha.%d.without", i), alpha(items[, -i]))
  tell(sprintf("alpha.%d.correlation", i), cor(items[, i], rowSums(items[, -i])))
}

if (nrow(d) >= 100) {
  plain <- svydesign(ids = ~1, weights = rep(1, nrow(d)), data = d)
  share <- function(name, shares) {
    frame <- data.frame(seq_along(shares), shares * nrow(d))
    names(frame) <- c(name, "Freq")
    frame
  }
  raked <- rake(plain, list(~q1, ~q6),
                list(share("q1", c(0.25, 0.35, 0.25, 0.15)), share("q6", c(0.3, 0.4, 0.3))),
                control = list(maxit = 10000, epsilon = 1e-11, verbose = FALSE))
  w <- weights(raked)
  tell("rake.effect", nrow(d) * sum(w^2) / sum(w)^2)
  tell("rake.smallest", min(w))
  tell("rake.largest", max(w))
  # The weights as fixed ones, as we take them, and only who has answered.
  d$w <- w
  table <- svytable(~q2 + q5_1, subset(svydesign(ids = ~1, weights = ~w, data = d),
                                       !is.na(q2) & !is.na(q5_1)))
  for (i in seq_len(ncol(table))) tell(sprintf("svytable.%d", i), table[1, i])
  both <- d[!is.na(d$q2) & !is.na(d$q5_1), ]
  test <- quiet(svychisq(~q2 + q5_1, svydesign(ids = ~1, weights = ~w, data = both)))
  tell("svychisq.f", test$statistic)
  tell("svychisq.df1", test$parameter[[1]])
  tell("svychisq.df2", test$parameter[[2]])
  tell("svychisq.p", test$p.value)
  aged <- svydesign(ids = ~1, weights = ~w, data = d[!is.na(d$q3), ])
  tell("svymean.mean", coef(svymean(~q3, aged)))
  tell("svymean.se", SE(svymean(~q3, aged)))
  tell("svymean.sd", sqrt(coef(svyvar(~q3, aged))))
}
close(out)

# Files with labels: the rows are in the same order. Each has the label of the question, those of the
# numbers, and the two kinds of missing values.
path <- function(name) file.path(directory, name)
sav <- read_sav(path("labelled.sav"), user_na = TRUE)
dta <- read_dta(path("labelled.dta"))
source(path("labelled.R"), chdir = TRUE)
levels_of_sav <- system2("pspp", c("-O", "format=csv"), stdout = TRUE,
                         input = sprintf("GET FILE='%s'.\nDISPLAY DICTIONARY.", path("labelled.sav")))
chosen <- setdiff(names(d), c("q7", "weight", "w"))
for (v in chosen) {
  x <- as.numeric(sav[[v]])
  why <- ifelse(x == -2, "Not asked", ifelse(x == -1, "No answer", NA))
  x[x < 0] <- NA
  stopifnot(identical(is.na(x), is.na(d[[v]])), all(x == d[[v]], na.rm = TRUE),
            all(x == as.numeric(dta[[v]]), na.rm = TRUE),
            identical(is.na(x), is.na(as.numeric(dta[[v]]))),
            all(x == as.numeric(answers[[v]]), na.rm = TRUE),
            identical(as.character(why), as.character(missing[[v]])),
            attr(sav[[v]], "label") == attr(answers[[v]], "label"),
            attr(dta[[v]], "label") == attr(answers[[v]], "label"))
  if (v != "q3") { # in .dta only whole numbers have labels
    tags <- na_tag(dta[[v]])
    stopifnot(identical(which(tags == "a"), which(why == "No answer")),
              identical(which(tags == "b"), which(why == "Not asked")))
    labels <- attr(sav[[v]], "labels")
    stopifnot(identical(labels[labels >= 0], attr(answers[[v]], "labels")),
              identical(names(labels), names(attr(dta[[v]], "labels"))))
  }
}
stopifnot(identical(as.character(sav$q7), as.character(dta$q7)),
          identical(as.character(sav$q7), as.character(gsub("\n", "\r\n", gsub("\r", "", answers$q7)))),
          all(sav$date == dta$date), all(sav$date == answers$date),
          all(table(sav$source) == table(answers$source)),
          any(grepl("How far do you agree\\?: It is easy.*Ordinal", levels_of_sav)),
          any(grepl("Which region are you from\\?.*Nominal", levels_of_sav)))

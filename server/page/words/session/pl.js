// Of signing in and out.
export const words = {
  signInTitle: "Zaloguj się", userName: "Nazwa", password: "Hasło", signIn: "Zaloguj",
  signOut: "Wyloguj", signedIn: "{0} ({1})", role_view: "tylko podgląd",
  role_confirm: "może potwierdzać", role_engineer: "inżynier",
  wrongPassword: "Nazwa i hasło nie pasują.",
  tooManyAttempts: "Zbyt wiele prób. Poczekaj co najmniej minutę.",
  signInFailed: "Logowanie nie powiodło się: {0}",
};
